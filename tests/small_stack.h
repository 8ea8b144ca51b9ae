// Runs a function on a thread whose stack is 512 KiB, as small as a host's
// worker threads: whatever recurses on the depth of a JSON text fails there.
#pragma once

#include <gtest/gtest.h>
#include <pthread.h>

#include <functional>

inline void RunOnSmallStack(std::function<void()> fn) {
    pthread_attr_t attributes;
    ASSERT_EQ(pthread_attr_init(&attributes), 0);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, 512 * 1024), 0);
    pthread_t thread;
    auto body = [](void* f) -> void* {
        (*static_cast<std::function<void()>*>(f))();
        return nullptr;
    };
    ASSERT_EQ(pthread_create(&thread, &attributes, body, &fn), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
}
