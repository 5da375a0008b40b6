#pragma once

/// @file
/// A folder that receives either all files of a run or none.

#include "Failure.h"

#include <filesystem>
#include <string>
#include <vector>

namespace Examples {

/// Collects files in a temporary folder inside the output folder, and moves them out of it at the end.
///
/// Until then nothing that the output folder held before is touched; an object that is destroyed early leaves
/// no file behind, and no folder that it made. The temporary folder of a run that was killed is removed by
/// the next run: it is locked as long as its run lives.
class OutputFolder {
public:
    /// @param folder where the files go; a relative path counts from the current folder
    /// @param everyName the names of all files that some run of the program may write: commit() removes those
    ///        that this run did not write, so that no file of an older run stands beside the new ones
    OutputFolder(std::filesystem::path folder, std::vector<std::string> everyName)
        : _folder(std::move(folder)), _everyName(std::move(everyName)) {}
    OutputFolder(OutputFolder const&) = delete;
    OutputFolder& operator=(OutputFolder const&) = delete;
    ~OutputFolder();

    /// Makes the folders, and removes what killed runs left.
    Expected<void, ErrorCode2> open(Place& place);
    /// Writes a file into the temporary folder.
    Expected<void, ErrorCode2> write(std::string const& name, std::string const& content, Place& place);
    /// Counts a file in that another program wrote into the temporary folder.
    void add(std::string const& name) { _names.push_back(name); }
    /// Moves every file to its place. When one cannot be moved, the folder is as it was before.
    Expected<void, ErrorCode2> commit(Place& place);

    std::filesystem::path const& temporary() const { return _temporary; }
    std::vector<std::string> const& names() const { return _names; } ///< the files, in order

private:
    Expected<void, ErrorCode2> makeTemporary(Place& place);
    Expected<void, ErrorCode2> setAside(std::vector<std::string>& aside, Place& place);

    std::filesystem::path _folder;
    std::vector<std::string> _everyName;
    std::filesystem::path _firstCreated; ///< the topmost folder that open() made; empty when all were there
    std::filesystem::path _temporary;
    int _lock = -1; ///< the temporary folder, opened and locked
    std::vector<std::string> _names;
    bool _committed = false;
};

} // namespace Examples
