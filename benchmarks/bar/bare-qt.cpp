// The smallest Qt Widgets bar with a clock. It shows the cost of the toolkit alone.
//
//     bare-qt [FORMAT]
//
// FORMAT is a QDateTime format, "HH:mm:ss" by default. The bar wakes at each change of the text.

#include <QApplication>
#include <QDateTime>
#include <QPainter>
#include <QScreen>
#include <QTimer>
#include <QWidget>

namespace {

constexpr int kBarHeight = 22;

class ClockBar : public QWidget {
  public:
    explicit ClockBar(QString format)
        : format_(std::move(format)), period_(format_.contains('s') ? 1000 : 60000) {
        setWindowFlags(Qt::FramelessWindowHint | Qt::WindowDoesNotAcceptFocus);
        const QRect screen = QApplication::primaryScreen()->geometry();
        setGeometry(screen.x(), screen.y(), screen.width(), kBarHeight);
        winId(); // creates the window, without which the type below is ignored
        setAttribute(Qt::WA_X11NetWmWindowTypeDock);
        timer_.setTimerType(Qt::PreciseTimer);
        timer_.setSingleShot(true);
        timer_.callOnTimeout(this, [this] { tick(); });
        tick();
    }

  protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.fillRect(rect(), QColor(0xee, 0xee, 0xee));
        painter.setPen(Qt::black);
        painter.drawText(rect().adjusted(0, 0, -8, 0), Qt::AlignRight | Qt::AlignVCenter,
                         QDateTime::currentDateTime().toString(format_));
    }

  private:
    void tick() {
        update(width() - 200, 0, 200, kBarHeight);
        const qint64 now = QDateTime::currentMSecsSinceEpoch();
        timer_.start(static_cast<int>(period_ - now % period_));
    }

    QString format_;
    qint64 period_;
    QTimer timer_;
};

} // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    ClockBar bar(argc > 1 ? QString::fromLocal8Bit(argv[1]) : QStringLiteral("HH:mm:ss"));
    bar.show();
    return QApplication::exec();
}
