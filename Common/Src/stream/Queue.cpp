#include "Common/Src/stream/Queue.h"
#include <sched.h>

void QueueInit(Queue *queue) {
    queue->state.emplace();
    const MutexLock lock(queue->state->mutex);
    queue->state->ring.resize(kQueueInitialCapacity);
}

void QueueDestroy(Queue *queue) {
    queue->state.reset();
}

namespace {

constexpr int kYieldsBeforeSleep = 100;

void Grow(QueueState &state) ZEL_REQUIRES(state.mutex) {
    std::vector<void *> larger(state.ring.size() * 2);
    for (size_t i = 0; i < state.count; ++i) {
        larger[i] = state.ring[(state.first + i) % state.ring.size()];
    }
    state.ring.swap(larger);
    state.first = 0;
}

/// Waking a sleeping thread for every item costs the other thread a system call and this one a
/// change of context, for buffers that are written in 20 microseconds. Yielding lets the other
/// thread go on where both share one processor; it then usually has several items ready.
void AwaitAwake(const QueueState &state) {
    for (int i = 0; i < kYieldsBeforeSleep && state.count == 0; ++i)
        sched_yield();
}

} // namespace

void QueuePush(Queue *queue, void *item) {
    QueueState &state = *queue->state;
    const MutexLock lock(state.mutex);
    const bool wasEmpty = state.count == 0;
    if (state.count == state.ring.size()) Grow(state);
    state.ring[(state.first + state.count) % state.ring.size()] = item;
    ++state.count;
    if (wasEmpty) state.arrived.SignalOne();
}

void *QueuePop(Queue *queue) {
    QueueState &state = *queue->state;
    AwaitAwake(state);
    const MutexLock lock(state.mutex);
    while (state.count == 0)
        state.arrived.Wait(state.mutex);
    void *item = state.ring[state.first];
    state.first = (state.first + 1) % state.ring.size();
    --state.count;
    return item;
}
