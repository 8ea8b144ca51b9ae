// A dynamic library opened at run time, and calls of its functions by name.
#pragma once

#include <string>
#include <utility>

#include "tvl/fs/path.h"

namespace tovel {

class DynamicLibrary {
public:
    DynamicLibrary() = default;
    virtual ~DynamicLibrary();
    DynamicLibrary(DynamicLibrary const&) = delete;
    DynamicLibrary& operator=(DynamicLibrary const&) = delete;

    // Opens path (lazy binding) unless a library is open already; true when one is open.
    bool load(fs::Path const& path);
    virtual void release();
    // Raised when a looked-up function is missing; loaders turn it into their 404.
    virtual void throw_function_not_found_error() const {}

    bool isOpen() const { return handle_ != nullptr; }
    fs::Path const& path() const { return path_; }
    // The symbol's address, or null (also when no library is open).
    void* symbol(std::string const& name) const;

    // Calls the function `name` with the arguments exactly as given. The symbol
    // is looked up on every call; a missing one raises
    // throw_function_not_found_error(). Pass arguments of the function's exact
    // parameter types (cast where needed), or use execAs below.
    template <typename R, typename... Args> R execThrows(std::string const& name, Args... args) const {
        void* address = symbol(name);
        if (address == nullptr) {
            throw_function_not_found_error();
            throw_missing();
        }
        return reinterpret_cast<R (*)(Args...)>(address)(args...);
    }

    // The same call typed by a declaration of the device headers:
    // execAs<decltype(&CSSG2H_MeasureRGB)>("CSSG2H_MeasureRGB", hid, &r, &g, &b)
    // converts each argument to the declared parameter type.
    template <typename Fn, typename... Args> auto execAs(std::string const& name, Args&&... args) const {
        void* address = symbol(name);
        if (address == nullptr) {
            throw_function_not_found_error();
            throw_missing();
        }
        return reinterpret_cast<Fn>(address)(std::forward<Args>(args)...);
    }

private:
    // Reached only when a subclass's error hook returned; never calls a null function.
    [[noreturn]] void throw_missing() const;

    fs::Path path_;
    void* handle_ = nullptr;
};

// Calls a device-library function through a loader, typed by its declaration.
#define TOVEL_EXEC(loader, function, ...) (loader).execAs<decltype(&function)>(#function, __VA_ARGS__)
#define TOVEL_EXEC0(loader, function) (loader).execAs<decltype(&function)>(#function)

} // namespace tovel
