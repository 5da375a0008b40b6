#include "foundation/ThreadProbe.h"

#include <pthread.h>

#include <cstdlib>

namespace Tervane::Math::Detail {

bool threadsCanBeHad(std::size_t count, std::size_t stackBytes) noexcept {
    pthread_attr_t attributes;
    if (pthread_attr_init(&attributes) != 0)
        return false;
    if (stackBytes != 0)
        pthread_attr_setstacksize(&attributes, stackBytes);

    // They wait for each other, so that none ends before the last has started.
    pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER;
    auto const wait = [](void* data) -> void* {
        auto* const gate = static_cast<pthread_mutex_t*>(data);
        pthread_mutex_lock(gate);
        pthread_mutex_unlock(gate);
        return nullptr;
    };
    auto* const threads = static_cast<pthread_t*>(std::malloc(count * sizeof(pthread_t)));
    std::size_t started = 0;
    pthread_mutex_lock(&mutex);
    while (threads != nullptr && started < count
           && pthread_create(&threads[started], &attributes, wait, &mutex) == 0)
        ++started;
    pthread_mutex_unlock(&mutex);
    for (std::size_t i = 0; i < started; ++i)
        pthread_join(threads[i], nullptr);
    std::free(threads);
    pthread_attr_destroy(&attributes);
    return started == count;
}

} // namespace Tervane::Math::Detail
