// What the program tells its caller when it ends.
#pragma once

namespace mirellon::cli {

enum class ExitStatus : int {
  kDone = 0,
  kFailed = 1,        // failed while working, standard output not writable
  kUsage = 2,         // wrong or unavailable option, value, command
  kInput = 3,         // input unreadable or not supported
  kOutput = 4,        // output not writable, existing, or the input itself
  kMemory = 5,        // not enough memory
  kInterrupted = 130  // SIGINT; every other signal that ends a run gives 128 + its number (SIGTERM: 143)
};

}  // namespace mirellon::cli
