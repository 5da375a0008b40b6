#include "OutputFolder.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>

namespace Examples {

namespace fs = std::filesystem;

namespace {

constexpr char const* temporaryPrefix = ".unfinished-";
constexpr char const* asideName = "replaced";

std::string lastError() {
    return std::error_code(errno, std::generic_category()).message();
}

/// Opens and locks a folder; -1 when another run holds it, or it is gone.
///
/// The kernel drops the lock when the run ends, however it ends; gnuplot does not inherit it.
int lockFolder(fs::path const& folder) {
    int const descriptor = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0) {
        return -1;
    }
    struct stat locked {};
    struct stat present {};
    if (flock(descriptor, LOCK_EX | LOCK_NB) != 0 || fstat(descriptor, &locked) != 0
        || stat(folder.c_str(), &present) != 0 || locked.st_ino != present.st_ino) {
        close(descriptor);
        return -1;
    }
    return descriptor;
}

/// Removes the temporary folders of runs that were killed.
void removeAbandoned(fs::path const& folder) {
    std::error_code ignored;
    std::vector<fs::path> abandoned;
    for (fs::directory_iterator entry(folder, ignored), end; !ignored && entry != end;
         entry.increment(ignored)) {
        if (entry->path().filename().string().starts_with(temporaryPrefix)) {
            abandoned.push_back(entry->path());
        }
    }
    for (fs::path const& path : abandoned) {
        if (int const lock = lockFolder(path); lock >= 0) {
            fs::remove_all(path, ignored);
            close(lock);
        }
    }
}

} // namespace

OutputFolder::~OutputFolder() {
    std::error_code ignored;
    if (!_temporary.empty()) {
        fs::remove_all(_temporary, ignored);
    }
    if (_lock >= 0) {
        close(_lock);
    }
    if (!_committed && !_firstCreated.empty()) {
        fs::remove_all(_firstCreated, ignored);
    }
}

Expected<void, ErrorCode2> OutputFolder::open(Place& place) {
    place = {_folder.string(), 0, 0, {}};
    std::error_code error;
    _folder = fs::absolute(_folder).lexically_normal();
    for (fs::path folder = _folder; !folder.empty() && !fs::exists(folder, error);
         folder = folder.parent_path()) {
        if (folder.has_filename()) {
            _firstCreated = folder;
        }
    }
    fs::create_directories(_folder, error);
    if (error) {
        place.detail = error.message();
        return FileFailure::FileNotWritable;
    }
    removeAbandoned(_folder);
    return makeTemporary(place);
}

Expected<void, ErrorCode2> OutputFolder::makeTemporary(Place& place) {
    // Another run that starts in the moment before the lock takes the folder for an abandoned one; then a new
    // one is made.
    for (int attempt = 0; attempt < 100 && _lock < 0; ++attempt) {
        std::string pattern = (_folder / temporaryPrefix).string() + "XXXXXX";
        if (mkdtemp(pattern.data()) == nullptr) {
            place.detail = lastError();
            return FileFailure::FileNotWritable;
        }
        _temporary = pattern;
        _lock = lockFolder(_temporary);
    }
    return {};
}

Expected<void, ErrorCode2> OutputFolder::write(std::string const& name, std::string const& content,
                                               Place& place) {
    std::ofstream stream(_temporary / name, std::ios::binary);
    stream << content;
    stream.close();
    if (!stream) {
        place = {(_folder / name).string(), 0, 0, {}};
        return FileFailure::FileNotWritable;
    }
    add(name);
    return {};
}

/// Moves what earlier runs wrote into the temporary folder, and notes the names in @p aside.
Expected<void, ErrorCode2> OutputFolder::setAside(std::vector<std::string>& aside, Place& place) {
    std::vector<std::string> names = _everyName;
    names.insert(names.end(), _names.begin(), _names.end());
    std::ranges::sort(names);
    names.erase(std::unique(names.begin(), names.end()), names.end());

    std::error_code error;
    fs::create_directory(_temporary / asideName, error);
    for (std::string const& name : names) {
        fs::file_status const status = fs::symlink_status(_folder / name);
        if (status.type() == fs::file_type::not_found) {
            continue;
        }
        if (fs::is_directory(status)) {
            error = std::make_error_code(std::errc::is_a_directory);
        } else {
            fs::rename(_folder / name, _temporary / asideName / name, error);
        }
        if (error) {
            place = {(_folder / name).string(), 0, 0, error.message()};
            return FileFailure::FileNotWritable;
        }
        aside.push_back(name);
    }
    return {};
}

Expected<void, ErrorCode2> OutputFolder::commit(Place& place) {
    std::vector<std::string> aside;
    auto outcome = setAside(aside, place);
    std::size_t moved = 0;
    for (; outcome && moved < _names.size(); ++moved) {
        std::error_code error;
        fs::rename(_temporary / _names[moved], _folder / _names[moved], error);
        if (error) {
            place = {(_folder / _names[moved]).string(), 0, 0, error.message()};
            outcome = FileFailure::FileNotWritable;
            break;
        }
    }
    if (!outcome) {
        std::error_code ignored;
        for (std::size_t i = 0; i < moved; ++i) {
            fs::remove(_folder / _names[i], ignored);
        }
        for (std::string const& name : aside) {
            fs::rename(_temporary / asideName / name, _folder / name, ignored);
        }
        return outcome;
    }
    _committed = true;
    return {};
}

} // namespace Examples
