#pragma once

/// @file
/// Sees every byte that reaches the process's standard output and error, from whatever library.

#include <string>

namespace Tervane::Math::TestKit {

/// Redirects the descriptors of standard output and standard error to a file while it lives.
class StreamCapture {
public:
    StreamCapture();
    ~StreamCapture();

    StreamCapture(StreamCapture const&) = delete;
    StreamCapture& operator=(StreamCapture const&) = delete;

    /// Ends the capture and gives what arrived.
    std::string finish();

private:
    int _file;
    int _output;
    int _error;
};

} // namespace Tervane::Math::TestKit
