#pragma once

#include <QDBusAbstractAdaptor>
#include <QString>
#include <QWidget>

namespace apps {

/// Exports a window on the session bus as com.quorvanesoftware.Window1, so that tests, benchmarks
/// and scripts can see what it shows. It is an adaptor of the object that the program registers on
/// the bus. Main thread only.
class WindowService final : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.quorvanesoftware.Window1")

  public:
    /// Owned by @p busObject. @p window must outlive it; it need not be visible.
    WindowService(QObject& busObject, QWidget& window);

    bool eventFilter(QObject* watched, QEvent* event) override;

  public slots:
    /// Saves an image of the window as PNG. Returns false if the window is hidden, @p path is
    /// relative or the file cannot be written.
    bool Snapshot(const QString& path);

  signals:
    /// Emitted after the window has been shown and its first image has been painted.
    void Drawn();

  private:
    QWidget& window_;
    bool isFirstPaintPending_ = false; ///< shown but not painted yet
};

} // namespace apps
