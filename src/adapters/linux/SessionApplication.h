#pragma once

#include <QApplication>

namespace ambertide {

/// The toolkit's application, on the first that answers of Wayland, X11 and no windows at all, unless
/// `QT_QPA_PLATFORM` names another, and without GL. Says in one line when a Wayland session is not reached as such.
class SessionApplication : public QApplication
{
public:
    /// The arguments of main(); both must outlive this.
    SessionApplication(int &argc, char **argv);

private:
    class WithoutGL;

    SessionApplication(bool isPlatformOurChoice, const WithoutGL &, int &argc, char **argv);
};

} // namespace ambertide
