#pragma once

#include "design/Design.h"
#include "design/Filter.h"

#include <optional>
#include <span>
#include <string>
#include <vector>

namespace design {

/// What the options of get_cells and its sisters say.
///
/// A pattern is first taken as a plain name. Otherwise, without `hierarchical`, it is matched level by level
/// from the top, as "u0/*" for the cells in u0; with it, a pattern without '/' is matched against the last
/// part of the name on every level and one with '/' against the full name. Regular expressions are never
/// taken apart and need `hierarchical` or a '/' to look below the top. A bus named without an index means all
/// its bits. No pattern means "*".
struct Query {
    bool hierarchical = false;
    bool regexp = false;
    bool nocase = false;
    std::string filter;
    std::vector<std::string> patterns;
};

/// The objects of class T that the query asks for, each once, in the order of the patterns and below that of
/// the netlist. Patterns without a match are appended to `unmatched` if given.
/// Throws Error(bad_filter), Error(no_such_property), and HEXError as HTCTclPatternMatch and
/// HCPFilterExpression.
template <class T>
std::vector<T*> find_objects(const Design& design, const Query& query,
                             std::vector<std::string>* unmatched = nullptr);

/// The objects of class T that are connected to, or are the owners or parts of, `objects`:
///
///     cells  of nets, of pins; in hierarchical cells; at the top of designs
///     nets   of cells, pins, ports; at the top of designs
///     pins   of cells, nets
///     ports  of nets of the top level, of designs
///
/// Each once, in the order of `objects`; then as the query says, with patterns taken as under `hierarchical`.
/// Throws Error(bad_query) for an object of a class that has no such relation.
template <class T>
std::vector<T*> related_objects(std::span<const ObjectRef> objects, const Query& query,
                                std::vector<std::string>* unmatched = nullptr);

/// The designs among `designs` that the patterns and the filter accept.
std::vector<Design*> find_designs(const std::vector<Design*>& designs, const Query& query,
                                  std::vector<std::string>* unmatched = nullptr);

/// The designs that objects belong to, each once.
std::vector<Design*> designs_of(std::span<const ObjectRef> objects);

/// Those that the filter accepts, in their order. Objects may be of several designs and classes.
std::vector<ObjectRef> filter_objects(std::vector<ObjectRef> objects, Filter& filter);

/// Those that the filter accepts, in their order. Objects may be of several designs.
template <class T>
std::vector<T*> filter_objects(std::vector<T*> objects, Filter& filter);

} // namespace design
