#include "platform/PrivateServer.h"

#include <QDBusPendingCall>

#include <fstream>
#include <iterator>
#include <utility>

namespace skylet::test {

namespace {

std::vector<std::string> serverCommand(const std::vector<std::string>& more) {
    std::vector<std::string> command{"Xvfb",       "-displayfd", "1",   "-screen", "0",
                                     "800x600x24", "-nolisten",  "tcp", "-noreset"};
    command.insert(command.end(), more.begin(), more.end());
    return command;
}

void setVariable(const std::string& name, const std::optional<std::string>& value) {
    value ? qputenv(name.c_str(), QByteArray::fromStdString(*value)) : qunsetenv(name.c_str());
}

} // namespace

Environment::Environment(std::string name, const std::optional<std::string>& value) : name_(std::move(name)) {
    if (qEnvironmentVariableIsSet(name_.c_str())) {
        before_ = qgetenv(name_.c_str()).toStdString();
    }
    setVariable(name_, value);
}

Environment::~Environment() {
    setVariable(name_, before_);
}

PrivateServer::PrivateServer(const std::vector<std::string>& arguments)
    : process_(serverCommand(arguments))
    , variable_("DISPLAY", ":" + process_.readLine()) {}

PrivateBus::~PrivateBus() {
    for (const QString& name : names_) {
        QDBusConnection::disconnectFromBus(name);
    }
}

QDBusConnection PrivateBus::connect() {
    names_ << QString::number(names_.size());
    return QDBusConnection::connectToBus(QString::fromStdString(address_), names_.back());
}

bool FakeObject::handleMessage(const QDBusMessage& message, const QDBusConnection& connection) {
    if (const auto arguments = answer_(message)) {
        connection.send(message.createReply(*arguments));
    }
    return true;
}

QDBusMessage ask(const QDBusConnection& bus, const QDBusMessage& call) {
    const QDBusPendingCall pending = bus.asyncCall(call);
    return eventually([&] { return pending.isFinished(); }) ? pending.reply() : QDBusMessage();
}

QDBusMessage busCall(const QString& service, const QString& path, const QString& interface,
                     const QString& method, const QVariantList& arguments) {
    auto message = QDBusMessage::createMethodCall(service, path, interface, method);
    message.setArguments(arguments);
    return message;
}

void sendSignal(const QDBusConnection& bus, const QString& path, const QString& interface,
                const QString& name, const QVariantList& arguments) {
    auto message = QDBusMessage::createSignal(path, interface, name);
    message.setArguments(arguments);
    bus.send(message);
}

void writeFile(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary | std::ios::trunc) << bytes;
}

std::string readFile(const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

} // namespace skylet::test
