#pragma once

/// Behind `thread_local`: the variable is found without a call, which is half a percent of reading. For a few bytes in
/// all, since a library that is loaded at run time shares what the loader has kept free for that.
#define QN_FAST_THREAD_LOCAL __attribute__((tls_model("initial-exec")))
