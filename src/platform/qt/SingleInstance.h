// The program's name on the session bus, with the interface by which applications are activated
// (org.freedesktop.Application, Desktop Entry Specification 1.5).
//
// Threads: main thread; activation comes from the event loop. Failure: without a session bus there is no
// other instance as far as this can tell.
#pragma once

#include <QDBusConnection>
#include <QDBusVirtualObject>
#include <QString>

#include <functional>

namespace skylet::platform::qt {

class SingleInstance : public QDBusVirtualObject {
  public:
    enum class Result {
        first,     // the name is ours
        activated, // another instance has it and was told to come forward
        noBus,
    };

    // Performs an action of the program's desktop entry; false when there is none of that name.
    using Perform = std::function<bool(const QString& action)>;

    // `activated` is called when the program is started or activated again.
    SingleInstance(QDBusConnection sessionBus, QString name, QString path, std::function<void()> activated,
                   Perform perform = {});
    SingleInstance(const SingleInstance&) = delete;
    SingleInstance& operator=(const SingleInstance&) = delete;
    ~SingleInstance() override;

    // Takes the name, or activates the instance that has it, waiting for it two seconds at most.
    [[nodiscard]] Result claim();

    [[nodiscard]] QString introspect(const QString& path) const override;
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

  private:
    void activateOther();

    QDBusConnection bus_;
    QString name_;
    QString path_;
    std::function<void()> activated_;
    Perform perform_;
    bool owned_ = false;
};

} // namespace skylet::platform::qt
