// The accessibility bus: calls to the elements (AT-SPI objects) of other applications.
//
// An application that does not answer in time is given up: for a while, calls to it fail at once. Without
// that, every one of its elements would cost a full time-out. The bus is never started.
//
// Threads: one thread, which need not run an event loop. No call takes longer than 0.25 s. Failure: error
// replies, with AT-SPI's or the bus's own errors.
#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QString>
#include <QVariant>

#include <chrono>
#include <cstdint>
#include <optional>
#include <unordered_map>
#include <vector>

namespace skylet::platform::x11 {

struct AtspiRef {
    QString bus; // the application's unique name
    QString path;
};

// Extents in X pixels.
struct AtspiExtents {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
};

// Readers of replies: nothing on errors and on replies of another form.
namespace AtspiReply {
[[nodiscard]] std::optional<std::vector<AtspiRef>> children(const QDBusMessage& reply);
[[nodiscard]] std::optional<std::uint32_t> number(const QDBusMessage& reply);
[[nodiscard]] std::optional<std::uint64_t> states(const QDBusMessage& reply);
[[nodiscard]] std::optional<AtspiExtents> extents(const QDBusMessage& reply);
// Of a property.
[[nodiscard]] std::optional<double> real(const QDBusMessage& reply);
[[nodiscard]] std::optional<QString> text(const QDBusMessage& reply);
// The accessibility error code that stands for the reply.
[[nodiscard]] int error(const QDBusMessage& reply);
} // namespace AtspiReply

class AtspiBus {
  public:
    // Nothing is done before the first use, so that it may be made on another thread than it is used on.
    explicit AtspiBus(QDBusConnection sessionBus);
    AtspiBus(const AtspiBus&) = delete;
    AtspiBus& operator=(const AtspiBus&) = delete;
    ~AtspiBus();

    // Whether the bus is there; connects if need be.
    [[nodiscard]] bool isReachable();

    [[nodiscard]] QDBusMessage call(const QDBusMessage& message);
    // All are sent before the first one is waited for. Answers in the order of the calls.
    [[nodiscard]] std::vector<QDBusMessage> callAll(const std::vector<QDBusMessage>& messages);

    // `interface` without "org.a11y.atspi.".
    [[nodiscard]] static QDBusMessage method(const AtspiRef& element, const char* interface,
                                             const char* member, const QVariantList& arguments = {});
    [[nodiscard]] static QDBusMessage property(const AtspiRef& element, const char* interface,
                                               const char* name);
    [[nodiscard]] static QDBusMessage setProperty(const AtspiRef& element, const char* interface,
                                                  const char* name, double value);
    // In root coordinates, where the toolkit knows them.
    [[nodiscard]] static QDBusMessage extents(const AtspiRef& element);

    // The roots of the applications of a process.
    [[nodiscard]] std::vector<AtspiRef> applications(std::int32_t pid);

  private:
    using Time = std::chrono::steady_clock::time_point;

    void disconnect();
    [[nodiscard]] bool isGivenUp(const QString& bus);

    QDBusConnection sessionBus_;
    QString name_; // of the connection, among the program's
    std::optional<QDBusConnection> connection_;
    std::unordered_map<QString, Time> givenUp_; // until when
};

} // namespace skylet::platform::x11
