// A device library opened from the host's exports directory on first use.
#pragma once

#include <string>

#include "tvl/dynamic_library.h"

namespace tovel {

class LibraryLoader : public DynamicLibrary {
public:
    // word: file name without suffix ("libdvc"); message: the 404 text of a missing function.
    LibraryLoader(char const* word, char const* message) : word_(word), message_(message) {}

    // 404 "FunctionNotFoundError" with this library's message.
    void throw_function_not_found_error() const override;

protected:
    // Opens <exports directory>/<word><suffix> when not open yet; a failure is
    // silent and tried again on the next call.
    void ensureLoaded();

private:
    char const* word_;
    char const* message_;
};

// Declares a loader class with its library word and missing-function message.
#define TOVEL_DECLARE_LOADER(Class)                                                                          \
    class Class : public LibraryLoader {                                                                     \
    public:                                                                                                  \
        static Class& loader();                                                                              \
                                                                                                             \
    private:                                                                                                 \
        Class();                                                                                             \
    }

// Defines a loader's constructor and its process-wide instance.
#define TOVEL_DEFINE_LOADER(Class, word, message)                                                            \
    Class::Class() : LibraryLoader(word, message) {}                                                         \
    Class& Class::loader() {                                                                                 \
        static Class instance;                                                                               \
        instance.ensureLoaded();                                                                             \
        return instance;                                                                                     \
    }

} // namespace tovel
