// Commands for bench/group_netlist.tcl: `load libbench_netlist.so Bench_netlist` makes them in the namespace
// yardstick. Each does by a loop over the cells of a collection what a command of Corvane does by its
// options.

#include "design/cmds/objects.h"
#include "platform/tcl/tcl_guard.h"

#include <ctime>

using namespace vek::tcltasks;

namespace {

const HSTVector<design::Cell*>& cells_of(Tcl_Obj* obj) {
    const auto* body =
        dynamic_cast<const design::Collection<design::Cell>::wrapper*>(detail::get_collection(obj));
    if (!body)
        throw design::Error(design::Fault::no_such_object, "A collection of cells was expected.");
    return body->elements();
}

Tcl_Obj* text_value(std::string_view text) {
    return Tcl_NewStringObj(text.data(), static_cast<int>(text.size()));
}

std::string_view ref_name(const design::Cell& cell) {
    return cell.design().netlist().names.text(cell.ref_name().id);
}

template <class Read>
Tcl_Obj* list_of(Tcl_Obj* collection, Read read) {
    const HSTVector<design::Cell*>& cells = cells_of(collection);
    std::vector<Tcl_Obj*> values;
    values.reserve(cells.size());
    for (const design::Cell* cell : cells)
        values.push_back(read(*cell));
    return Tcl_NewListObj(static_cast<int>(values.size()), values.data());
}

// names CELLS
Tcl_Obj* names(Tcl_Interp*, Tcl_Obj* const* words) {
    return list_of(words[0], [buffer = std::string()](const design::Cell& cell) mutable {
        buffer.clear();
        cell.append_name(buffer);
        return text_value(buffer);
    });
}

// fanouts CELLS
Tcl_Obj* fanouts(Tcl_Interp*, Tcl_Obj* const* words) {
    return list_of(words[0], [](const design::Cell& cell) { return Tcl_NewWideIntObj(cell.fanout()); });
}

// ref_names CELLS
Tcl_Obj* ref_names(Tcl_Interp*, Tcl_Obj* const* words) {
    return list_of(words[0], [](const design::Cell& cell) { return text_value(ref_name(cell)); });
}

// wide_luts CELLS: those with `fanout > 2 && ref_name == LUT4`
Tcl_Obj* wide_luts(Tcl_Interp*, Tcl_Obj* const* words) {
    std::vector<design::Cell*> result;
    for (design::Cell* cell : cells_of(words[0]))
        if (cell->fanout() > 2 && ref_name(*cell) == "LUT4")
            result.push_back(cell);
    return native_wrapper<design::Collection<design::Cell>>::convert_to_tcl(
        design::collection_of(std::move(result)));
}

// cpu_time SCRIPT: microseconds that all threads of the process work on it. On a busy machine it says more
// than the time that passes.
Tcl_Obj* cpu_time(Tcl_Interp* interp, Tcl_Obj* const* words) {
    const auto now = [] {
        timespec time;
        ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
        return static_cast<double>(time.tv_sec) * 1e6 + static_cast<double>(time.tv_nsec) / 1e3;
    };
    const double start = now();
    return Tcl_EvalObjEx(interp, words[0], 0) == TCL_OK ? Tcl_NewDoubleObj(now() - start) : nullptr;
}

using body = Tcl_Obj* (*)(Tcl_Interp*, Tcl_Obj* const*);

int run(ClientData data, Tcl_Interp* interp, int objc, Tcl_Obj* const* objv) {
    return tcl_guard(interp, [&] {
        if (objc != 2) {
            Tcl_WrongNumArgs(interp, 1, objv, "argument");
            return TCL_ERROR;
        }
        Tcl_Obj* result = reinterpret_cast<body>(data)(interp, objv + 1);
        if (!result)
            return TCL_ERROR;
        Tcl_SetObjResult(interp, result);
        return TCL_OK;
    });
}

} // namespace

extern "C" DLLEXPORT int Bench_netlist_Init(Tcl_Interp* interp) {
    static constexpr std::pair<const char*, body> commands[] = {
        {"names", names},         {"fanouts", fanouts},   {"ref_names", ref_names},
        {"wide_luts", wide_luts}, {"cpu_time", cpu_time},
    };
    for (const auto& [name, command] : commands)
        Tcl_CreateObjCommand(interp, (std::string("yardstick::") + name).c_str(), run,
                             reinterpret_cast<ClientData>(command), nullptr);
    return TCL_OK;
}
