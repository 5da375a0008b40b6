// A host that loads a plugin, computes with it in threads, unloads it and goes on: nothing of the library's
// may run in code that is no longer there.
//
//   plugin_host PLUGIN LIBRARY_SONAME

#include <dlfcn.h>

#include <chrono>
#include <cstdio>
#include <future>
#include <thread>

namespace {

int fail(char const* what) {
    std::fprintf(stderr, "%s\n", what);
    return 1;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3)
        return fail("usage: plugin_host PLUGIN LIBRARY_SONAME");

    // Once more when it has gone: what stayed from the first time must still serve.
    for (int round = 0; round < 2; ++round) {
        void* const plugin = dlopen(argv[1], RTLD_NOW | RTLD_LOCAL);
        if (plugin == nullptr)
            return fail(dlerror());
        auto const compute = reinterpret_cast<bool (*)()>(dlsym(plugin, "compute"));
        if (compute == nullptr)
            return fail(dlerror());

        // One thread ends before the plugin goes and one after, since the runtimes clean up at a thread's
        // end.
        bool isRight = false;
        std::thread([&] { isRight = compute(); }).join();
        std::promise<bool> computed;
        std::promise<void> unloaded;
        std::thread outlasting([&] {
            computed.set_value(compute());
            unloaded.get_future().wait();
        });
        isRight = computed.get_future().get() && isRight;
        dlclose(plugin);
        unloaded.set_value();
        outlasting.join();
        if (!isRight)
            return fail("the plugin computed something wrong");

        if (dlopen(argv[1], RTLD_NOW | RTLD_NOLOAD) != nullptr)
            return fail("the plugin itself was not unloaded");
        if (dlopen(argv[2], RTLD_NOW | RTLD_NOLOAD) == nullptr)
            return fail("the library was unloaded with the plugin");
        // Workers that had nothing to do are woken up now and then.
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
    }
    return 0;
}
