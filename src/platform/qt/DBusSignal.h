// The subscription to one signal on a message bus.
//
// Threads: main thread; the callback comes from the event loop. Failure: on a bus that is not connected no
// signal ever comes.
#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QString>

#include <functional>

namespace skylet::platform::qt {

class DBusSignal : public QObject {
    Q_OBJECT

  public:
    struct Source {
        QString service; // empty: any sender
        QString path;    // empty: any object
        QString interface;
        QString name;
    };
    using Callback = std::function<void(const QDBusMessage&)>;

    DBusSignal(QDBusConnection bus, Source source, Callback callback);
    ~DBusSignal() override;

    Q_SLOT void receive(const QDBusMessage& message);

  private:
    QDBusConnection bus_;
    Source source_;
    Callback callback_;
};

} // namespace skylet::platform::qt
