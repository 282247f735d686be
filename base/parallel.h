// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <functional>
#include <string_view>

#include "base/progress.h"

namespace kestrel::base {

/// How many threads to use when `wanted` are asked for; 0 asks for as many as there are cores.
int thread_count(int wanted);

/// Calls work(item, worker) for every item from 0 to `count` - 1, on up to `threads` threads. Items are handed out in
/// ascending order; `worker`, from 0 to `threads` - 1, is the same for all items of one thread.
///
/// \param threads as thread_count() gives it.
/// \param progress hears the share of the items that is done, at the start and about every 50 ms, on the calling thread
///        only. When it answers stop, no further item is begun, and it is not asked again.
/// \return whether all items were done.
/// \throws what the lowest item threw, which does not depend on the number of threads.
bool for_each_item(std::size_t count, int threads, Progress& progress, std::string_view text,
                   const std::function<void(std::size_t item, int worker)>& work);

}  // namespace kestrel::base
