#pragma once

#include <QWidget>

namespace ambertide {

class Button;
class ProgressBar;

/// The command-line tool: what it is, how it is used once it is there, and the button that installs or removes it.
class CommandLineToolView final : public QWidget
{
    Q_OBJECT

public:
    CommandLineToolView();

    void setInstalled(bool isInstalled);
    /// While processing, a busy bar is shown instead of the button.
    void setProcessing(bool isProcessing);

Q_SIGNALS:
    void pressed();

private:
    Button *m_button = nullptr;
    ProgressBar *m_progress = nullptr;
    QWidget *m_usage = nullptr;
};

} // namespace ambertide
