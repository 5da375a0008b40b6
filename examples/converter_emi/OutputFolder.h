#pragma once

/// @file
/// A folder that receives either all files of a run or none.

#include "Failure.h"

#include <filesystem>
#include <string>
#include <vector>

namespace ConverterEmi {

/// Collects files in a temporary folder inside the output folder, and moves them out of it at the end.
///
/// Until then nothing that the output folder held before is touched; an object that is destroyed early leaves
/// no file behind, and no folder that it made.
class OutputFolder {
public:
    explicit OutputFolder(std::filesystem::path folder) : _folder(std::move(folder)) {}
    OutputFolder(OutputFolder const&) = delete;
    OutputFolder& operator=(OutputFolder const&) = delete;
    ~OutputFolder();

    /// Makes the folders.
    Expected<void, ErrorCode2> open(Place& place);
    /// Writes a file into the temporary folder.
    Expected<void, ErrorCode2> write(std::string const& name, std::string const& content, Place& place);
    /// Counts a file in that another program wrote into the temporary folder.
    void add(std::string const& name) { _names.push_back(name); }
    /// Moves every file to its place.
    Expected<void, ErrorCode2> commit(Place& place);

    std::filesystem::path const& temporary() const { return _temporary; }
    std::vector<std::string> const& names() const { return _names; } ///< the files, in order

private:
    std::filesystem::path _folder;
    std::filesystem::path _firstCreated; ///< the topmost folder that open() made; empty when all were there
    std::filesystem::path _temporary;
    std::vector<std::string> _names;
    bool _committed = false;
};

} // namespace ConverterEmi
