// What the thread sanitizer has to know about libraries that are not built with it.
//
// It does not see how they keep their own threads apart. What our code does from within their callbacks has
// none of them in its stack and is judged all the same. Included once in a program, by its main file.
#pragma once

#ifdef __SANITIZE_THREAD__
extern "C" const char* __tsan_default_suppressions();
extern "C" const char* __tsan_default_suppressions() { // NOLINT: the sanitizer's name
    return "race:libQt6Core.so\nrace:libQt6Gui.so\nrace:libQt6Widgets.so\nrace:libQt6XcbQpa.so\n"
           "race:libQt6DBus.so\nrace:libglib-2.0.so\nrace:libdbus-1.so\n";
}
#endif
