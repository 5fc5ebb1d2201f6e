#pragma once

#include "platform/msg/HEX.h"

#include <cstdint>
#include <string>

namespace design {

/// What kind of refusal an Error is; each kind has one message of the subsystem "design".
enum class Fault : uint8_t {
    unreadable_file,
    malformed_netlist,
    no_top,
    bad_hierarchy,
    dead_object,
    no_such_property,
    bad_property_value,
    read_only_property,
    bad_property,
    bad_filter,
    unwritable_file,
    no_such_object,
    bad_query,
    no_design,
    interrupted,
};

/// Every refusal of the netlist database.
class Error : public HEXError {
public:
    /// `text` is a full sentence that names the offending value.
    Error(Fault fault, const std::string& text);

    Fault fault() const noexcept { return fault_; }
    /// The sentence, without what the message adds to it.
    const std::string& text() const noexcept { return text_; }

private:
    Fault fault_;
    std::string text_;
};

/// A netlist file whose content is refused. The byte offset counts from 0 and the line from 1, both in the
/// text as it is after decompression.
class NetlistError : public Error {
public:
    NetlistError(const std::string& text, uint64_t offset, uint64_t line)
        : Error(Fault::malformed_netlist, text), offset_(offset), line_(line) {}

    uint64_t offset() const noexcept { return offset_; }
    uint64_t line() const noexcept { return line_; }

private:
    uint64_t offset_;
    uint64_t line_;
};

} // namespace design
