// An X server and a message bus of the test's own; the environment names them for as long as they live.
#pragma once

#include "platform/ChildProcess.h"

#include <QTemporaryDir>

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

    [[nodiscard]] const std::string& display() const { return display_; }
    void end() { process_.end(); }

  private:
    ChildProcess process_;
    std::string display_;
    Environment variable_;
};

class PrivateBus {
  public:
    PrivateBus();

    [[nodiscard]] const std::string& address() const { return address_; }

  private:
    ChildProcess process_;
    std::string address_;
    Environment variable_;
};

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
