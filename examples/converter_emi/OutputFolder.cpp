#include "OutputFolder.h"

#include <cstdlib>
#include <fstream>

namespace ConverterEmi {

namespace fs = std::filesystem;

OutputFolder::~OutputFolder() {
    std::error_code ignored;
    if (!_temporary.empty()) {
        fs::remove_all(_temporary, ignored);
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
        return Failure::FileNotWritable;
    }
    std::string pattern = (_folder / ".unfinished-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) {
        place.detail = std::error_code(errno, std::generic_category()).message();
        return Failure::FileNotWritable;
    }
    _temporary = pattern;
    return {};
}

Expected<void, ErrorCode2> OutputFolder::write(std::string const& name, std::string const& content,
                                               Place& place) {
    std::ofstream stream(_temporary / name, std::ios::binary);
    stream << content;
    stream.close();
    if (!stream) {
        place = {(_folder / name).string(), 0, 0, {}};
        return Failure::FileNotWritable;
    }
    add(name);
    return {};
}

Expected<void, ErrorCode2> OutputFolder::commit(Place& place) {
    for (std::string const& name : _names) {
        std::error_code error;
        fs::rename(_temporary / name, _folder / name, error);
        if (error) {
            place = {(_folder / name).string(), 0, 0, error.message()};
            return Failure::FileNotWritable;
        }
    }
    _committed = true;
    return {};
}

} // namespace ConverterEmi
