#include "Process.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <poll.h>
#include <sstream>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace skylet::desktop {
namespace {

std::vector<char*> pointers(std::vector<std::string>& texts) {
    std::vector<char*> result;
    result.reserve(texts.size() + 1);
    for (std::string& text : texts) {
        result.push_back(text.data());
    }
    result.push_back(nullptr);
    return result;
}

std::vector<pid_t> childrenOf(pid_t pid) {
    std::vector<pid_t> result;
    const std::filesystem::path tasks = "/proc/" + std::to_string(pid) + "/task";
    std::error_code ignored;
    for (const auto& task : std::filesystem::directory_iterator(tasks, ignored)) {
        std::ifstream children(task.path() / "children");
        for (pid_t child = 0; children >> child;) {
            result.push_back(child);
        }
    }
    return result;
}

} // namespace

Process::Process(const Command& command, const Environment& environment, std::string errorPath)
    : errorPath_(std::move(errorPath)) {
    std::vector<std::string> arguments = command;
    std::vector<std::string> variables;
    for (const auto& [name, value] : environment) {
        variables.push_back(std::string(name).append("=").append(value));
    }
    const std::vector<char*> argv = pointers(arguments);
    const std::vector<char*> envp = pointers(variables);
    int input[2] = {-1, -1};
    int output[2] = {-1, -1};
    if (::pipe2(input, O_CLOEXEC) != 0 || ::pipe2(output, O_CLOEXEC) != 0) {
        exitCode_ = 127;
        return;
    }
    const int errors =
        errorPath_.empty() ? -1 : ::open(errorPath_.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    const pid_t parent = ::getpid();
    pid_ = ::fork();
    if (pid_ == 0) {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        ::dup2(input[0], 0);
        ::dup2(output[1], 1);
        if (errors >= 0) {
            ::dup2(errors, 2);
        }
        ::signal(SIGPIPE, SIG_DFL);
        sigset_t none;
        ::sigemptyset(&none);
        ::pthread_sigmask(SIG_SETMASK, &none, nullptr);
        if (::getppid() == parent) {
            ::execvpe(argv[0], argv.data(), envp.data());
        }
        ::_exit(127);
    }
    ::close(input[0]);
    ::close(output[1]);
    if (errors >= 0) {
        ::close(errors);
    }
    input_ = input[1];
    output_ = output[0];
}

Process& Process::operator=(Process&& other) noexcept {
    std::swap(pid_, other.pid_);
    std::swap(exitCode_, other.exitCode_);
    std::swap(input_, other.input_);
    std::swap(output_, other.output_);
    std::swap(pending_, other.pending_);
    std::swap(errorPath_, other.errorPath_);
    return *this;
}

Process::~Process() {
    stop();
    for (const int descriptor : {input_, output_}) {
        if (descriptor >= 0) {
            ::close(descriptor);
        }
    }
}

bool Process::isRunning() {
    if (pid_ <= 0 || exitCode_) {
        return false;
    }
    int status = 0;
    if (::waitpid(pid_, &status, WNOHANG) != pid_) {
        return true;
    }
    exitCode_ = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return false;
}

std::optional<int> Process::waitForExit(std::chrono::milliseconds deadline) {
    if (eventually([this] { return !isRunning(); }, deadline)) {
        return exitCode_;
    }
    return std::nullopt;
}

void Process::signal(int number) const {
    if (pid_ > 0 && !exitCode_) {
        ::kill(pid_, number);
    }
}

int Process::stop() {
    if (isRunning()) {
        signal(SIGTERM);
        signal(SIGCONT);
        if (!waitForExit(std::chrono::seconds(3))) {
            signal(SIGKILL);
            (void)waitForExit();
        }
    }
    return exitCode_.value_or(127);
}

void Process::write(const std::string& text) const {
    for (std::size_t done = 0; done < text.size();) {
        const ssize_t count = ::write(input_, text.data() + done, text.size() - done);
        if (count <= 0) {
            return;
        }
        done += static_cast<std::size_t>(count);
    }
}

std::optional<std::string> Process::readLine(std::chrono::milliseconds deadline) {
    const auto end = std::chrono::steady_clock::now() + deadline;
    while (true) {
        if (const auto feed = pending_.find('\n'); feed != std::string::npos) {
            std::string line = pending_.substr(0, feed);
            pending_.erase(0, feed + 1);
            return line;
        }
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
        pollfd poll{output_, POLLIN, 0};
        // What is there already is read also without any time left.
        if (::poll(&poll, 1, static_cast<int>(std::max(left.count(), decltype(left.count()){0}))) <= 0) {
            return std::nullopt;
        }
        char buffer[4096];
        const ssize_t count = ::read(output_, buffer, sizeof buffer);
        if (count <= 0) {
            return std::nullopt;
        }
        pending_.append(buffer, static_cast<std::size_t>(count));
    }
}

std::string Process::errorOutput() const {
    return readFile(errorPath_);
}

int run(const Command& command, const Environment& environment) {
    return Process(command, environment).waitForExit().value_or(127);
}

void adoptOrphans() {
    ::prctl(PR_SET_CHILD_SUBREAPER, 1);
}

std::vector<pid_t> descendantsNamed(const std::string& name) {
    std::vector<pid_t> result;
    std::vector<pid_t> open = childrenOf(::getpid());
    while (!open.empty()) {
        const pid_t pid = open.back();
        open.pop_back();
        if (readFile("/proc/" + std::to_string(pid) + "/comm") == name + "\n") {
            result.push_back(pid);
        }
        const std::vector<pid_t> below = childrenOf(pid);
        open.insert(open.end(), below.begin(), below.end());
    }
    return result;
}

void endDescendants() {
    // A round ends one generation; its children become ours and are ended in the next.
    for (auto children = childrenOf(::getpid()); !children.empty(); children = childrenOf(::getpid())) {
        for (const pid_t child : children) {
            ::kill(child, SIGKILL);
            ::waitpid(child, nullptr, 0);
        }
    }
}

std::string readFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

void writeFile(const std::string& path, const std::string& text) {
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    std::ofstream(path, std::ios::binary) << text;
}

} // namespace skylet::desktop
