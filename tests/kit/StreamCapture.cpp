#include "kit/StreamCapture.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <stdexcept>

namespace Tervane::Math::TestKit {

namespace {

void flushStreams() {
    std::cout.flush();
    std::cerr.flush();
    std::fflush(nullptr);
}

int openTemporaryFile() {
    std::string name = std::filesystem::temp_directory_path() / "captureXXXXXX";
    int const file = mkstemp(name.data());
    if (file < 0)
        throw std::runtime_error("no temporary file for captured streams");
    unlink(name.c_str());
    return file;
}

} // namespace

StreamCapture::StreamCapture()
    : _file(openTemporaryFile()), _output(dup(STDOUT_FILENO)), _error(dup(STDERR_FILENO)) {
    flushStreams();
    dup2(_file, STDOUT_FILENO);
    dup2(_file, STDERR_FILENO);
}

StreamCapture::~StreamCapture() {
    if (_file >= 0)
        finish();
}

std::string StreamCapture::finish() {
    flushStreams();
    dup2(_output, STDOUT_FILENO);
    dup2(_error, STDERR_FILENO);
    close(_output);
    close(_error);

    std::string text;
    lseek(_file, 0, SEEK_SET);
    char block[4096];
    for (ssize_t n = 0; (n = read(_file, block, sizeof block)) > 0;)
        text.append(block, static_cast<std::size_t>(n));
    close(_file);
    _file = -1;
    return text;
}

} // namespace Tervane::Math::TestKit
