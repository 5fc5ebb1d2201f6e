#pragma once

#include "design/Design.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace design {

/// The designs in memory, and which of them is current. Interpreter's thread only.
///
/// Designs that were closed stay as empty shells, so that a handle to one of them or to one of its objects
/// can always be asked whether it is alive.
class Database {
public:
    /// The database that commands work on; never destroyed.
    static Database& instance();

    /// Reads a netlist file, see Design for `top`; the design becomes current and takes the place of an open
    /// one of the same name. If anything is refused, or `interrupted` says yes on the way, all designs stay
    /// as they were.
    Design& read(const std::string& path, std::string_view top = {},
                 const std::function<bool()>& interrupted = {});

    /// Takes over a design that was made otherwise, in the same way.
    Design& add(std::unique_ptr<Design> design);

    /// Closes an open design; the last one read of those left becomes current if it was.
    void close(Design& design);
    void close_all();

    /// Calls `hook` for each design that has been opened.
    void on_open(std::function<void(const Design&)> hook) { on_open_ = std::move(hook); }
    /// Calls `hook` for each design that is about to be closed, while its objects are still alive.
    void on_close(std::function<void(const Design&)> hook) { on_close_ = std::move(hook); }

    /// Null if there is none.
    Design* current() const { return current_; }
    /// Throws Error(no_design) if there is none.
    Design& require_current() const;
    void set_current(Design& design) { current_ = &design; }

    /// The open designs in the order of reading.
    std::vector<Design*> designs() const;
    /// Null if no open design has the name.
    Design* find(std::string_view name) const;
    /// Throws Error(no_such_object), which lists the names there are.
    Design& require(std::string_view name) const;

private:
    std::vector<std::unique_ptr<Design>> designs_;
    std::vector<std::unique_ptr<Design>> closed_;
    Design* current_ = nullptr;
    std::function<void(const Design&)> on_open_, on_close_;
};

} // namespace design
