#pragma once

#include <QApplication>

namespace ambertide {

/// The toolkit's application, without GL, on whichever answers first of Wayland, X11 and no windows at all, unless
/// `QT_QPA_PLATFORM` names a platform. One line says when the compositor of a Wayland session cannot be used.
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
