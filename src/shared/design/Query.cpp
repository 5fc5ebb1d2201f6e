#include "design/Query.h"

#include "design/Error.h"
#include "platform/tcl/HTCTclPatternMatch.h"

#include <algorithm>
#include <set>

namespace design {

using Pattern = HTCTclPatternMatch;

namespace {

/// Gathers objects of one design, each once.
template <class T>
class Gatherer {
public:
    explicit Gatherer(const Design& design) : design_(design) {}

    void add(T* object) {
        // A few objects are cheaper compared than marked.
        constexpr size_t few = 16;
        if (result_.size() < few) {
            for (const T* other : result_)
                if (other == object)
                    return;
        } else {
            if (seen_.empty()) {
                seen_.resize(design_.count<T>());
                for (const T* other : result_)
                    seen_[other->index()] = true;
            }
            if (seen_[object->index()])
                return;
            seen_[object->index()] = true;
        }
        result_.push_back(object);
    }

    void add_all() {
        if (!result_.empty()) {
            for (uint32_t i = 0; i < design_.count<T>(); ++i)
                add(design_.object<T>(i));
            return;
        }
        result_.reserve(design_.count<T>());
        for (uint32_t i = 0; i < design_.count<T>(); ++i)
            result_.push_back(design_.object<T>(i));
        seen_.assign(result_.size() >= 16 ? result_.size() : 0, true);
    }

    size_t size() const { return result_.size(); }
    std::vector<T*> take() { return std::move(result_); }

private:
    const Design& design_;
    std::vector<T*> result_;
    std::vector<bool> seen_;
};

/// Calls `visit` for the objects of a scope one of whose local names `accept` takes. A net has all the names
/// of its bit; the others have one. `prefix` goes before each name.
template <class T, class Accept, class Visit>
void for_each_accepted(const Design& design, uint32_t scope, const std::string& prefix, const Accept& accept,
                       const Visit& visit) {
    const Design::Scope& s = design.scopes()[scope];
    const Netlist& n = design.netlist();
    const Netlist::Module& m = design.module_of(s);
    const Netlist::Range range = design.range<T>(s);
    std::string name = prefix;
    if constexpr (std::is_same_v<T, Net>) {
        std::vector<bool> accepted(m.nets.count);
        for (uint32_t w = m.wires.first; w < m.wires.first + m.wires.count; ++w) {
            const Netlist::Wire& wire = n.wires[w];
            for (uint32_t bit = 0; bit < wire.width; ++bit) {
                name.resize(prefix.size());
                n.append_bit_name(name, wire.name, bit, wire.width, wire.offset, wire.upto);
                const uint32_t net = n.bits[wire.bits + bit];
                if (!accepted[net] && accept(name))
                    accepted[net] = true;
            }
        }
        for (uint32_t i = 0; i < m.nets.count; ++i) {
            const Netlist::Net& net = n.nets[m.nets.first + i];
            if (accepted[i] || (net.wire == none && accept(prefix + Netlist::constant_names[net.bit])))
                visit(design.object<Net>(range.first + i));
        }
    } else if constexpr (std::is_same_v<T, Pin>) {
        for (uint32_t c = 0; c < m.cells.count; ++c) {
            const Netlist::Cell& cell = n.cells[m.cells.first + c];
            name.resize(prefix.size());
            name += n.names.text(cell.name);
            name += '/';
            const size_t stem = name.size();
            for (const Shape::Port& port : n.shapes[cell.shape].ports)
                for (uint32_t bit = 0; bit < port.width; ++bit) {
                    name.resize(stem);
                    n.append_bit_name(name, port.name, bit, port.width, port.offset, port.upto);
                    if (accept(name))
                        visit(design.object<Pin>(range.first + (cell.pins - m.pins.first) + port.first_pin +
                                                 bit));
                }
        }
    } else if constexpr (std::is_same_v<T, Cell>) {
        for (uint32_t c = 0; c < m.cells.count; ++c) {
            const std::string_view local = n.names.text(n.cells[m.cells.first + c].name);
            if (prefix.empty() ? accept(local) : accept((name.resize(prefix.size()), name += local)))
                visit(design.object<Cell>(range.first + c));
        }
    } else {
        for (uint32_t i = 0; i < range.count; ++i) {
            name.resize(prefix.size());
            design.object<Port>(range.first + i)->append_name(name);
            if (accept(name))
                visit(design.object<Port>(range.first + i));
        }
    }
}

/// The part of a pin's local name that a pattern without '/' is about.
template <class T>
std::string_view last_part(std::string_view local) {
    if constexpr (std::is_same_v<T, Pin>)
        return local.substr(local.rfind('/') + 1);
    return local;
}

// Brackets stand for themselves, as bits of buses are named with them.
Pattern glob(std::string text, bool nocase) {
    return Pattern(std::move(text), false, nocase, Pattern::Brackets::itself);
}

Pattern make_pattern(const std::string& text, const Query& query) {
    return query.regexp ? Pattern(text, true, query.nocase) : glob(text, query.nocase);
}

template <class T>
void match_on_all_levels(const Design& design, const Pattern& pattern, Gatherer<T>& found) {
    const bool by_path = pattern.pattern().find('/') != std::string::npos;
    if (pattern.pattern() == "*") {
        found.add_all();
        return;
    }
    std::string path;
    for (uint32_t s = 0; s < design.scopes().size(); ++s) {
        path.clear();
        if (by_path)
            design.append_path(path, s);
        if (!by_path && pattern.literal() && !std::is_same_v<T, Pin>) {
            design.find_in_scope<T>(s, *pattern.literal(), [&](T* object) { found.add(object); });
            continue;
        }
        for_each_accepted<T>(
            design, s, path,
            [&](std::string_view name) { return pattern.match(by_path ? name : last_part<T>(name)); },
            [&](T* object) { found.add(object); });
    }
}

// A glob from the top down. Each '/' of the pattern may separate levels or stand in a name, so both are
// followed; what is left of the pattern and the scope it is left for are visited once.
template <class T>
void match_by_level(const Design& design, const Pattern& pattern, Gatherer<T>& found) {
    const std::string& text = pattern.pattern();
    std::set<std::pair<uint32_t, size_t>> visited;
    std::vector<std::pair<uint32_t, size_t>> open{{0, 0}};
    for (size_t next = 0; next < open.size(); ++next) {
        const auto [scope, begin] = open[next];
        if (!visited.emplace(scope, begin).second)
            continue;
        const Pattern rest = glob(text.substr(begin), pattern.isNoCase());
        if (rest.literal())
            design.find_in_scope<T>(scope, *rest.literal(), [&](T* object) { found.add(object); });
        else
            for_each_accepted<T>(
                design, scope, "", [&](std::string_view name) { return rest.match(name); },
                [&](T* object) { found.add(object); });
        for (size_t slash = text.find('/', begin); slash != std::string::npos;
             slash = text.find('/', slash + 1)) {
            const Pattern part = glob(text.substr(begin, slash - begin), pattern.isNoCase());
            const auto enter = [&](const Cell* cell) {
                if (cell->scope() != none)
                    open.emplace_back(cell->scope(), slash + 1);
            };
            if (part.literal())
                design.find_in_scope<Cell>(scope, *part.literal(), enter);
            else
                for_each_accepted<Cell>(
                    design, scope, "", [&](std::string_view name) { return part.match(name); }, enter);
        }
    }
}

// A regular expression without `hierarchical`: the top level, or all levels if it speaks of paths.
template <class T>
void match_regexp(const Design& design, const Pattern& pattern, Gatherer<T>& found) {
    const bool by_path = pattern.pattern().find('/') != std::string::npos;
    const auto scopes = static_cast<uint32_t>(by_path ? design.scopes().size() : 1);
    std::string path;
    for (uint32_t s = 0; s < scopes; ++s) {
        path.clear();
        design.append_path(path, s);
        for_each_accepted<T>(
            design, s, path, [&](std::string_view name) { return pattern.match(name); },
            [&](T* object) { found.add(object); });
    }
}

template <class T>
void apply_filter(std::vector<T*>& objects, const Query& query, const Design* design) {
    if (query.filter.empty())
        return;
    Filter filter(query.filter, {query.regexp, query.nocase});
    // Even where there is nothing to filter, a misspelt property should be told.
    if (objects.empty() && design)
        filter.bind(*design, T::object_class);
    objects = filter_objects(std::move(objects), filter);
}

} // namespace

template <class T>
std::vector<T*> find_objects(const Design& design, const Query& query, std::vector<std::string>* unmatched) {
    design.require_open();
    Gatherer<T> found(design);
    static const std::vector<std::string>& everything = *new std::vector<std::string>{"*"};
    for (const std::string& text : query.patterns.empty() ? everything : query.patterns) {
        const size_t before = found.size();
        bool matched = false;
        // A name is looked up as it stands first: names may hold what a pattern would take for a wildcard.
        if (!query.regexp && !query.nocase)
            design.find<T>(text, [&](T* object) {
                found.add(object);
                matched = true;
            });
        if (!matched) {
            const Pattern pattern = make_pattern(text, query);
            if (query.hierarchical)
                match_on_all_levels(design, pattern, found);
            else if (query.regexp)
                match_regexp(design, pattern, found);
            else
                match_by_level(design, pattern, found);
            matched = found.size() > before;
        }
        if (!matched && unmatched && !query.patterns.empty())
            unmatched->push_back(text);
    }
    std::vector<T*> objects = found.take();
    apply_filter(objects, query, &design);
    return objects;
}

namespace {

template <class T>
[[noreturn]] void refuse_relation(const ObjectRef& object) {
    throw Error(Fault::bad_query, std::string("There are no ") + class_name(T::object_class) + "s of a " +
                                      class_name(object.object_class()) + " ('" +
                                      object.name().substr(0, 200) + "').");
}

// Calls `visit` for each T related to an object.
template <class T, class Visit>
void for_each_related(const ObjectRef& object, const Visit& visit) {
    const Design& design = object.design();
    const auto whole_scope = [&](uint32_t scope) {
        const Netlist::Range range = design.range<T>(design.scopes()[scope]);
        for (uint32_t i = range.first; i < range.first + range.count; ++i)
            visit(design.object<T>(i));
    };
    const auto* cell = object.as<Cell>();
    const auto* net = object.as<Net>();
    const auto* pin = object.as<Pin>();
    const auto* port = object.as<Port>();
    if (object.object_class() == ObjectClass::design) {
        whole_scope(0);
        return;
    }
    if constexpr (std::is_same_v<T, Cell>) {
        if (cell && cell->scope() != none)
            whole_scope(cell->scope());
        else if (net)
            for (uint32_t i = 0; i < net->pin_count(); ++i)
                visit(net->pin(i)->cell());
        else if (pin)
            visit(pin->cell());
        else if (!cell)
            refuse_relation<T>(object);
    } else if constexpr (std::is_same_v<T, Net>) {
        if (cell) {
            for (uint32_t i = 0; i < cell->pin_count(); ++i)
                if (Net* connected = cell->pin(i)->net())
                    visit(connected);
        } else if (pin) {
            if (Net* connected = pin->net())
                visit(connected);
        } else if (port) {
            visit(port->net());
        } else {
            refuse_relation<T>(object);
        }
    } else if constexpr (std::is_same_v<T, Pin>) {
        if (!cell && !net)
            refuse_relation<T>(object);
        const uint32_t count = cell ? cell->pin_count() : net->pin_count();
        for (uint32_t i = 0; i < count; ++i)
            visit(cell ? cell->pin(i) : net->pin(i));
    } else {
        if (!net)
            refuse_relation<T>(object);
        for (Port* connected : design.ports_of_net(*net))
            visit(connected);
    }
}

} // namespace

template <class T>
std::vector<T*> related_objects(std::span<const ObjectRef> objects, const Query& query,
                                std::vector<std::string>* unmatched) {
    std::vector<T*> result;
    // One gatherer for each run of objects of one design; nearly always there is one run.
    for (size_t i = 0; i < objects.size();) {
        const Design& design = objects[i].design();
        Gatherer<T> found(design);
        for (; i < objects.size() && &objects[i].design() == &design; ++i)
            for_each_related<T>(objects[i], [&](T* object) { found.add(object); });
        const std::vector<T*> run = found.take();
        result.insert(result.end(), run.begin(), run.end());
    }
    if (!query.patterns.empty()) {
        std::vector<Pattern> patterns;
        for (const std::string& text : query.patterns)
            patterns.push_back(make_pattern(text, query));
        std::vector<bool> used(patterns.size());
        std::string name;
        std::erase_if(result, [&](const T* object) {
            name.clear();
            object->append_name(name);
            const std::string_view last = std::string_view(name).substr(name.rfind('/') + 1);
            bool wanted = false;
            for (size_t p = 0; p < patterns.size(); ++p) {
                const std::string& text = query.patterns[p];
                if (patterns[p].match(name) || (!query.regexp && name == text) ||
                    (text.find('/') == std::string::npos && patterns[p].match(last))) {
                    used[p] = true;
                    wanted = true;
                }
            }
            return !wanted;
        });
        for (size_t p = 0; p < patterns.size() && unmatched; ++p)
            if (!used[p])
                unmatched->push_back(query.patterns[p]);
    }
    apply_filter(result, query, objects.empty() ? nullptr : &objects[0].design());
    return result;
}

template <class T>
std::vector<T*> filter_objects(std::vector<T*> objects, Filter& filter) {
    const Design* bound = nullptr;
    std::erase_if(objects, [&](const T* object) {
        const Design& design = object->design();
        if (&design != bound) {
            filter.bind(design, T::object_class);
            bound = &design;
        }
        return !filter.matches(object->index());
    });
    return objects;
}

std::vector<ObjectRef> filter_objects(std::vector<ObjectRef> objects, Filter& filter) {
    std::erase_if(objects, [&](const ObjectRef& object) { return !filter.matches(object); });
    return objects;
}

std::vector<Design*> designs_of(std::span<const ObjectRef> objects) {
    std::vector<Design*> designs;
    for (const ObjectRef& object : objects)
        if (std::find(designs.begin(), designs.end(), &object.design()) == designs.end())
            designs.push_back(&object.design());
    return designs;
}

std::vector<Design*> find_designs(const std::vector<Design*>& designs, const Query& query,
                                  std::vector<std::string>* unmatched) {
    std::vector<Pattern> patterns;
    for (const std::string& text : query.patterns)
        patterns.push_back(make_pattern(text, query));
    std::vector<bool> used(patterns.size());
    std::vector<Design*> result;
    for (Design* design : designs) {
        bool wanted = patterns.empty();
        for (size_t p = 0; p < patterns.size(); ++p)
            if (patterns[p].match(design->name()) || (!query.regexp && design->name() == query.patterns[p]))
                wanted = used[p] = true;
        if (wanted)
            result.push_back(design);
    }
    for (size_t p = 0; p < patterns.size() && unmatched; ++p)
        if (!used[p])
            unmatched->push_back(query.patterns[p]);
    if (query.filter.empty())
        return result;
    Filter filter(query.filter, {query.regexp, query.nocase});
    std::erase_if(result, [&](Design* design) { return !filter.matches(ObjectRef(*design)); });
    return result;
}

template std::vector<Cell*> find_objects(const Design&, const Query&, std::vector<std::string>*);
template std::vector<Net*> find_objects(const Design&, const Query&, std::vector<std::string>*);
template std::vector<Pin*> find_objects(const Design&, const Query&, std::vector<std::string>*);
template std::vector<Port*> find_objects(const Design&, const Query&, std::vector<std::string>*);
template std::vector<Cell*> related_objects(std::span<const ObjectRef>, const Query&,
                                            std::vector<std::string>*);
template std::vector<Net*> related_objects(std::span<const ObjectRef>, const Query&,
                                           std::vector<std::string>*);
template std::vector<Pin*> related_objects(std::span<const ObjectRef>, const Query&,
                                           std::vector<std::string>*);
template std::vector<Port*> related_objects(std::span<const ObjectRef>, const Query&,
                                            std::vector<std::string>*);
template std::vector<Cell*> filter_objects(std::vector<Cell*>, Filter&);
template std::vector<Net*> filter_objects(std::vector<Net*>, Filter&);
template std::vector<Pin*> filter_objects(std::vector<Pin*>, Filter&);
template std::vector<Port*> filter_objects(std::vector<Port*>, Filter&);

} // namespace design
