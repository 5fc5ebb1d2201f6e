#include "design/Database.h"

#include "design/Error.h"
#include "design/NetlistReader.h"

#include <algorithm>

namespace design {

Database& Database::instance() {
    static Database& database = *new Database;
    return database;
}

Design& Database::read(const std::string& path, std::string_view top,
                       const std::function<bool()>& interrupted) {
    return add(std::make_unique<Design>(read_netlist_file(path, interrupted), top, path));
}

Design& Database::add(std::unique_ptr<Design> design) {
    designs_.reserve(designs_.size() + 1);
    if (Design* old = find(design->name()))
        close(*old);
    current_ = design.get();
    designs_.push_back(std::move(design));
    if (on_open_)
        on_open_(*current_);
    return *current_;
}

void Database::close(Design& design) {
    const auto it = std::find_if(designs_.begin(), designs_.end(),
                                 [&](const auto& candidate) { return candidate.get() == &design; });
    if (it == designs_.end())
        return;
    if (on_close_)
        on_close_(design);
    closed_.push_back(std::move(*it));
    designs_.erase(it);
    design.close();
    if (current_ == &design)
        current_ = designs_.empty() ? nullptr : designs_.back().get();
}

void Database::close_all() {
    while (!designs_.empty())
        close(*designs_.back());
}

Design& Database::require_current() const {
    if (!current_)
        throw Error(Fault::no_design, "No design is open; read one with read_netlist.");
    return *current_;
}

std::vector<Design*> Database::designs() const {
    std::vector<Design*> result;
    for (const auto& design : designs_)
        result.push_back(design.get());
    return result;
}

Design* Database::find(std::string_view name) const {
    for (const auto& design : designs_)
        if (design->name() == name)
            return design.get();
    return nullptr;
}

Design& Database::require(std::string_view name) const {
    if (Design* design = find(name))
        return *design;
    std::string text = "No design is named '" + std::string(name.substr(0, 200)) + "'";
    if (designs_.empty())
        text += "; none is open.";
    for (const auto& design : designs_)
        text += (design == designs_.front() ? "; there are '" : ", '") + design->name() + "'";
    if (!designs_.empty())
        text += '.';
    throw Error(Fault::no_such_object, text);
}

} // namespace design
