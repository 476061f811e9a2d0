// What a screen reader finds of a program, and the program's actions on the session bus.
//
// Coordinates: root coordinates. Threads: the main thread. Failure: what cannot be found is nothing; a
// program that does not answer within a few seconds has nothing.
#pragma once

#include "VirtualDesktop.h"

#include <QDBusConnection>
#include <QList>

#include <optional>
#include <string>
#include <vector>

namespace skylet::desktop {

// States by the numbers of the protocol (AtspiStateType).
constexpr int stateChecked = 4;
constexpr int stateFocusable = 11;
constexpr int stateShowing = 25;

struct AccessibleNode {
    std::string name;
    QList<unsigned> states; // two words of bits
    Rectangle place;

    [[nodiscard]] bool is(int state) const { return ((states.value(state / 32) >> (state % 32)) & 1U) != 0; }
};

class AccessibleTree {
  public:
    explicit AccessibleTree(VirtualDesktop& desktop);
    AccessibleTree(const AccessibleTree&) = delete;
    AccessibleTree& operator=(const AccessibleTree&) = delete;
    ~AccessibleTree();

    // Everything that the program shows now, parents before their children.
    [[nodiscard]] std::vector<AccessibleNode> shown(const std::string& program) const;
    // The one of that name; a control rather than its label.
    [[nodiscard]] std::optional<AccessibleNode> find(const std::string& program,
                                                     const std::string& name) const;

    // Has the program perform an action of its desktop entry; "" activates it.
    [[nodiscard]] bool perform(const std::string& action) const;

  private:
    struct Reference;
    [[nodiscard]] std::vector<Reference> children(const Reference& parent) const;
    [[nodiscard]] AccessibleNode read(const Reference& reference) const;
    void collect(const Reference& parent, std::vector<AccessibleNode>& nodes, int depth) const;

    QDBusConnection session_;
    QDBusConnection bus_;
};

} // namespace skylet::desktop
