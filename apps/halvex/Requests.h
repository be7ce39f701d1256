#pragma once

#include <QObject>
#include <QString>

#include <functional>
#include <map>
#include <string>

/// What other programs ask of this one, by notifications on the session bus. Main thread.
class Requests final : public QObject {
    Q_OBJECT

  public:
    /// The request under each name. Listens from now on.
    explicit Requests(std::map<std::string, std::function<void()>> handlers);

    /// Tells those who wait for the program that it can be asked for something.
    static void announceLaunch();

  private slots:
    void heard(const QString& name, const QString& object, const QString& userInfo);

  private:
    const std::map<std::string, std::function<void()>> handlers_;
};
