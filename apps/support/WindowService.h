#pragma once

#include <QDBusAbstractAdaptor>
#include <QString>
#include <QWidget>

namespace apps {

/// A program's window on the session bus, for those who want to see what it shows: tests,
/// benchmarks and scripts. Part of the object that the program has there.
class WindowService final : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.quorvanesoftware.Window1")

  public:
    /// @p window is the one that is meant, whether it is on the screen or not.
    WindowService(QObject& busObject, QWidget& window);

    bool eventFilter(QObject* watched, QEvent* event) override;

  public slots:
    /// Writes the window as PNG to an absolute path; false when it is not on the screen, or when
    /// that cannot be written.
    bool Snapshot(const QString& path);

  signals:
    /// The window has come to the screen, and its first picture is drawn.
    void Drawn();

  private:
    QWidget& window_;
    bool isAwaited_ = false; ///< the first picture
};

} // namespace apps
