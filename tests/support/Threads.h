#pragma once

#include <atomic>
#include <thread>
#include <vector>

namespace vumo::test
{
/// Calls `action(i)` for each i below `count`, each in a thread of its own. None begins before all are there.
template <class Action>
void inThreads(int count, const Action& action)
{
    std::atomic<int> missing = count;
    std::vector<std::thread> threads;
    for (int i = 0; i < count; ++i)
    {
        threads.emplace_back([&, i] {
            for (--missing; missing > 0;)
                std::this_thread::yield();
            action(i);
        });
    }
    for (std::thread& thread : threads)
        thread.join();
}
} // namespace vumo::test
