#include "platform/qt/QtMessages.h"

#include <QString>
#include <QtGlobal>

#include <cstdio>
#include <memory>
#include <mutex>
#include <utility>

namespace skylet::platform::qt {

namespace {

// Qt's handler is a plain function that reaches nothing but this.
std::mutex sinkMutex;
std::shared_ptr<const QtMessages::Sink> currentSink;

void handleMessage(QtMsgType type, const QMessageLogContext& /*context*/, const QString& message) {
    if (type == QtFatalMsg) {
        std::fprintf(stderr, "skylet: %s\n", qUtf8Printable(message));
        return;
    }
    std::shared_ptr<const QtMessages::Sink> sink;
    {
        const std::lock_guard lock(sinkMutex);
        sink = currentSink;
    }
    if (sink) {
        (*sink)(message.toStdString());
    }
}

} // namespace

QtMessages::QtMessages() {
    qInstallMessageHandler(handleMessage);
}

QtMessages::~QtMessages() {
    setSink({});
}

void QtMessages::setSink(Sink sink) {
    const std::lock_guard lock(sinkMutex);
    currentSink = sink ? std::make_shared<const Sink>(std::move(sink)) : nullptr;
}

} // namespace skylet::platform::qt
