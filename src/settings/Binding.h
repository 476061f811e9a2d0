// A value that lives elsewhere and is read and written from here.
#pragma once

#include <functional>

namespace skylet {

template <class T>
struct Binding {
    std::function<T()> get;
    std::function<void(T)> set;
};

} // namespace skylet
