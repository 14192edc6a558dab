// Notes every write that the program makes to files below a folder, so that the moments between
// them can be made again: what a process that ends there has left.
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

/// One write, or a new length.
struct RecordedWrite {
    std::string path;
    std::size_t offset;  // of a new length: that length
    std::string bytes;   // of a new length: empty
    bool is_length;
};

/// Files by their path.
using FileSet = std::map<std::string, std::string>;

/// Notes writes to files whose path begins with `folder` until StopRecording returns them.
void StartRecording(const std::string& folder);
std::vector<RecordedWrite> StopRecording();

/// What the files are after the write, of which only the first `length` bytes arrived.
void Apply(FileSet& files, const RecordedWrite& write, std::size_t length);
