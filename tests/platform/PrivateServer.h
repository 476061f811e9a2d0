// An X server and a message bus of the test's own; the environment names them for as long as they live.
#pragma once

#include "platform/ChildProcess.h"
#include "platform/Waiting.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QTemporaryDir>

#include <functional>
#include <optional>
#include <string>

namespace skylet::test {

// Sets an environment variable and puts the former value back.
class Environment {
  public:
    Environment(std::string name, const std::optional<std::string>& value);
    Environment(const Environment&) = delete;
    Environment& operator=(const Environment&) = delete;
    ~Environment();

  private:
    std::string name_;
    std::optional<std::string> before_;
};

class PrivateServer {
  public:
    // The display number is the server's own choice. `arguments` are added.
    explicit PrivateServer(const std::vector<std::string>& arguments = {});

    void end() { process_.end(); }

  private:
    ChildProcess process_;
    Environment variable_;
};

class PrivateBus {
  public:
    PrivateBus() = default;
    PrivateBus(const PrivateBus&) = delete;
    PrivateBus& operator=(const PrivateBus&) = delete;
    ~PrivateBus();

    // A connection of its own, as another program has it; it ends with this.
    [[nodiscard]] QDBusConnection connect();

  private:
    ChildProcess process_{{"dbus-daemon", "--session", "--nofork", "--nopidfile", "--print-address"}};
    std::string address_ = process_.readLine();
    Environment variable_{"DBUS_SESSION_BUS_ADDRESS", address_};
    QStringList names_;
};

// An object on a bus that answers each call with what `answer` says, or not at all.
class FakeObject : public QDBusVirtualObject {
  public:
    using Answer = std::function<std::optional<QVariantList>(const QDBusMessage&)>;
    explicit FakeObject(Answer answer) : answer_(std::move(answer)) {}
    [[nodiscard]] QString introspect(const QString& /*path*/) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

  private:
    Answer answer_;
};

// The answer to a call, while the event loop runs.
[[nodiscard]] QDBusMessage ask(const QDBusConnection& bus, const QDBusMessage& call);
[[nodiscard]] QDBusMessage busCall(const QString& service, const QString& path, const QString& interface,
                                   const QString& method, const QVariantList& arguments = {});
void sendSignal(const QDBusConnection& bus, const QString& path, const QString& interface,
                const QString& name, const QVariantList& arguments = {});

class TemporaryDirectory {
  public:
    [[nodiscard]] std::string path(const std::string& name = {}) const {
        return directory_.path().toStdString() + (name.empty() ? "" : "/" + name);
    }

  private:
    QTemporaryDir directory_;
};

void writeFile(const std::string& path, const std::string& bytes);
[[nodiscard]] std::string readFile(const std::string& path);

} // namespace skylet::test
