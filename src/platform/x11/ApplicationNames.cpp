#include "platform/x11/ApplicationNames.h"

#include "platform/x11/Property.h"

#include <QFile>

#include <utility>

namespace skylet::platform::x11 {

namespace {

// How long a change of the installed applications may go unnoticed.
constexpr double checkSeconds = 5;

std::optional<std::string> nonEmpty(std::optional<std::string> text) {
    return text && !text->empty() ? std::move(text) : std::nullopt;
}

std::optional<std::string> processName(ProcessID pid) {
    QFile file(QStringLiteral("/proc/%1/comm").arg(pid));
    if (!file.open(QIODevice::ReadOnly)) {
        return std::nullopt;
    }
    return nonEmpty(QString::fromUtf8(file.readAll()).trimmed().toStdString());
}

} // namespace

ApplicationNames::ApplicationNames(Connection& connection, MainQueue& mainQueue, SerialQueueFactory& queues,
                                   NameSources sources)
    : connection_(connection)
    , mainQueue_(mainQueue)
    , sources_(std::move(sources))
    , self_(std::make_shared<ApplicationNames*>(this))
    , worker_(queues.makeSerialQueue("com.corvane.skylet.names")) {
    refresh();
}

ApplicationNames::~ApplicationNames() = default;

void ApplicationNames::refresh() {
    const double now = mainQueue_.now();
    if (!times_.empty() && now - lastCheck_ < checkSeconds) {
        return;
    }
    lastCheck_ = now;
    auto times = DesktopEntries::modificationTimes(sources_.directories);
    if (times == times_) {
        return;
    }
    times_ = std::move(times);
    worker_->async([sources = sources_, &mainQueue = mainQueue_, weak = std::weak_ptr(self_)] {
        auto entries =
            std::make_shared<const DesktopEntries>(DesktopEntries::read(sources.directories, sources.locale));
        mainQueue.async([entries = std::move(entries), weak] {
            if (const auto self = weak.lock()) {
                (*self)->entries_ = entries;
                (*self)->known_.clear();
            }
        });
    });
}

std::optional<std::string> ApplicationNames::name(ProcessID pid, xcb_window_t window) {
    refresh();
    if (const auto it = known_.find(pid); it != known_.end()) {
        return it->second;
    }
    auto found = find(pid, window);
    if (found && entries_ && window != XCB_WINDOW_NONE) {
        known_.emplace(pid, *found);
    }
    return found;
}

std::optional<std::string> ApplicationNames::find(ProcessID pid, xcb_window_t window) {
    if (window == XCB_WINDOW_NONE) {
        return processName(pid);
    }
    const Atoms& atoms = connection_.atoms();
    auto classReply = askText(connection_, window, XCB_ATOM_WM_CLASS);
    auto gtkReply = askText(connection_, window, atoms.GTK_APPLICATION_ID);
    const WindowClass names = windowClass(classReply).value_or(WindowClass{});
    const auto gtkId = nonEmpty(text(gtkReply, atoms));
    if (entries_) {
        for (const std::string* claimed : {&names.className, &names.instance}) {
            if (auto name = entries_->nameByWindowClass(*claimed)) {
                return name;
            }
        }
        if (auto name = gtkId ? entries_->nameById(*gtkId) : std::nullopt) {
            return name;
        }
        for (const std::string* id : {&names.className, &names.instance}) {
            if (auto name = id->empty() ? std::nullopt : entries_->nameById(*id)) {
                return name;
            }
        }
    }
    if (auto name = nonEmpty(names.className)) {
        return name;
    }
    return processName(pid);
}

} // namespace skylet::platform::x11
