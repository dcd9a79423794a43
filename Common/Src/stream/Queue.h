/// A blocking first-in, first-out queue of raw pointers between two threads.
#pragma once

#include "support/Mutex.h"
#include <atomic>
#include <cstddef>
#include <optional>
#include <vector>

/// What a Queue holds while it is initialised.
struct QueueState {
    Mutex mutex;
    Condition arrived; ///< signalled when an item arrives in an empty queue
    std::vector<void *> ring ZEL_GUARDED_BY(mutex); ///< grows when full, never shrinks
    size_t first ZEL_GUARDED_BY(mutex) = 0;
    std::atomic<size_t> count = 0; ///< changed under the mutex, looked at without it while spinning
};

/// Does not own its items; a null pointer is an item like any other. Any thread may push and pop,
/// but as one push wakes one waiter only when the queue was empty, a queue serves one consumer.
struct Queue {
    std::optional<QueueState> state;
};

/// Items that a queue takes before it has to grow.
constexpr size_t kQueueInitialCapacity = 64;

/// Makes the queue empty and usable. Throws std::bad_alloc when memory is short.
void QueueInit(Queue *queue);

/// Releases the queue, but not the items in it. Nobody may be waiting on it.
void QueueDestroy(Queue *queue);

/// Appends `item`. Never waits for anything but the lock. Throws std::bad_alloc when the queue has
/// to grow and memory is short.
void QueuePush(Queue *queue, void *item);

/// Takes the item at the front, waiting for one without limit: first awake, for as long as an item
/// takes on its way through a busy pipeline, then asleep.
[[nodiscard]] void *QueuePop(Queue *queue);
