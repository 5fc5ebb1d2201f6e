// omu::foreach varList list ?varList list ...? command
// As Tcl's foreach; a collection is walked element by element and never becomes a list.
#include <algorithm>
#include <cassert>
#include <memory>
#include <span>
#include <vector>

#include "platform/taskcore/collection_wrapper_base.h"
#include "platform/taskcore/native_cache_base.h"
#include "platform/tcl/tcl_guard.h"
#include "platform/tcl/tclobj_ref.h"
#include "tcltasks/builtin/HTCBuiltinCmds.h"

using namespace vek::tcltasks;

namespace {

// The elements of a collection in their order, made into values some at a time, which is much faster than one
// by one. None is given out that the collection or the object behind it has meanwhile left.
class ElementsInTurn {
public:
    // Null for an element without a form in Tcl.
    tclobj_ref take(const detail::collection_wrapper_base& collection, size_t idx) {
        if (idx != m_next || m_next - m_first >= m_values.size() || m_revision != collection.revision() ||
            m_removals != native_cache_base::removals()) {
            fill(collection, idx, std::min(most, collection.size() - idx));
        }
        return std::move(m_values[m_next++ - m_first]);
    }

private:
    static constexpr size_t most = 64;

    void fill(const detail::collection_wrapper_base& collection, size_t idx, size_t count) {
        m_values.clear();
        m_values.resize(count);
        m_first = m_next = idx;
        m_revision = collection.revision();
        m_removals = native_cache_base::removals();
        try {
            collection.get_elements_as_tclobjs(idx, m_values);
        } catch (...) {
            if (count == 1) {
                m_values.clear();
                throw;
            }
            // A later element is at fault: its turn has not come.
            fill(collection, idx, 1);
        }
    }

    std::vector<tclobj_ref> m_values;
    size_t m_first = 0; // index of the first value
    size_t m_next = 0;
    unsigned long m_revision = 0;
    unsigned long m_removals = 0;
};

// A variable list or value list as it was when the loop began. The body may change or convert the value that
// it came from; of a collection, which is not copied, it may also change the elements.
class TclObjArray {
public:
    TclObjArray() = default;
    TclObjArray(const TclObjArray&) = delete;
    TclObjArray& operator=(const TclObjArray&) = delete;
    ~TclObjArray() {
        if (m_cwb) {
            m_cwb->decr_ref();
        }
    }

    int open(Tcl_Interp* interp, Tcl_Obj* value) {
        if (detail::collection_wrapper_base* collection = detail::get_collection(value)) {
            m_cwb = collection;
            m_cwb->incr_ref();
            m_held = value;
            return TCL_OK;
        }
        static const Tcl_ObjType* const listType = Tcl_GetObjType("list");
        if (value->typePtr != listType && Tcl_ConvertToType(interp, value, listType) != TCL_OK) {
            return TCL_ERROR;
        }
        // A list of the same elements without the text, which would be the dear part of the copy.
        m_held = Tcl_NewObj();
        Tcl_InvalidateStringRep(m_held.get());
        listType->dupIntRepProc(value, m_held.get());
        int count = 0;
        Tcl_Obj** elements = nullptr;
        Tcl_ListObjGetElements(nullptr, m_held.get(), &count, &elements);
        m_objs = {elements, static_cast<size_t>(count)};
        return TCL_OK;
    }

    size_t size() const { return m_cwb ? m_cwb->size() : m_objs.size(); }

    // Null for an element without a form in Tcl.
    tclobj_ref operator[](size_t idx) {
        assert(idx < m_objs.size() || (m_cwb && idx < m_cwb->size()));
        return m_cwb ? m_elements.take(*m_cwb, idx) : tclobj_ref(m_objs[idx]);
    }

private:
    std::span<Tcl_Obj* const> m_objs;                 // of m_held
    detail::collection_wrapper_base* m_cwb = nullptr; // counted
    ElementsInTurn m_elements;                        // of m_cwb
    tclobj_ref m_held;
};

struct variables_and_values {
    TclObjArray variables;
    TclObjArray values;
    size_t variableCount = 0;
    size_t next = 0; // the value that the next variable takes
};

struct loop {
    loop(size_t lists, Tcl_Obj* script) : pairs(lists), body(script) {}

    std::vector<variables_and_values> pairs;
    tclobj_ref body;
    size_t rounds = 0; // still to do
};

int open(Tcl_Interp* interp, loop& l, Tcl_Obj* const* objv) {
    for (variables_and_values& pair : l.pairs) {
        if (pair.variables.open(interp, *objv++) != TCL_OK) {
            return TCL_ERROR;
        }
        pair.variableCount = pair.variables.size();
        if (pair.variableCount < 1) {
            Tcl_AppendResult(interp, "foreach varlist is empty", nullptr);
            Tcl_SetErrorCode(interp, "TCL", "OPERATION", "FOREACH", "NEEDVARS", nullptr);
            return TCL_ERROR;
        }
        if (pair.values.open(interp, *objv++) != TCL_OK) {
            return TCL_ERROR;
        }
        const size_t values = pair.values.size();
        l.rounds = std::max(l.rounds, (values + pair.variableCount - 1) / pair.variableCount);
    }
    return TCL_OK;
}

// Past the end of a list, which for a collection is where it ends by now, variables get empty values.
tclobj_ref next_value(variables_and_values& pair) {
    const size_t index = pair.next++;
    tclobj_ref value = index < pair.values.size() ? pair.values[index] : tclobj_ref();
    return value ? value : tclobj_ref(Tcl_NewObj());
}

int assign(Tcl_Interp* interp, loop& l) {
    for (variables_and_values& pair : l.pairs) {
        for (size_t v = 0; v < pair.variableCount; ++v) {
            const tclobj_ref variable = v < pair.variables.size() ? pair.variables[v] : tclobj_ref();
            if (!variable) {
                ++pair.next;
                continue;
            }
            const tclobj_ref value = next_value(pair);
            if (!Tcl_ObjSetVar2(interp, variable.get(), nullptr, value.get(), TCL_LEAVE_ERR_MSG)) {
                Tcl_AppendObjToErrorInfo(interp, Tcl_ObjPrintf("\n    (setting foreach loop variable \"%s\")",
                                                               Tcl_GetString(variable.get())));
                return TCL_ERROR;
            }
        }
    }
    return TCL_OK;
}

int finish_round(ClientData data[], Tcl_Interp* interp, int code);

// Does the next round, and with its end the others.
int start_round(Tcl_Interp* interp, std::unique_ptr<loop> l) {
    if (assign(interp, *l) != TCL_OK) {
        return TCL_ERROR;
    }
    --l->rounds;
    Tcl_Obj* const body = l->body.get();
    Tcl_NRAddCallback(interp, finish_round, l.release(), nullptr, nullptr, nullptr);
    return Tcl_NREvalObj(interp, body, 0);
}

int finish_round(ClientData data[], Tcl_Interp* interp, int code) {
    std::unique_ptr<loop> l(static_cast<loop*>(data[0]));
    if (code == TCL_ERROR) {
        Tcl_AppendObjToErrorInfo(interp,
                                 Tcl_ObjPrintf("\n    (\"foreach\" body line %d)", Tcl_GetErrorLine(interp)));
    }
    if (code != TCL_OK && code != TCL_CONTINUE && code != TCL_BREAK) {
        return code;
    }
    if (code == TCL_BREAK || l->rounds == 0) {
        Tcl_ResetResult(interp);
        return TCL_OK;
    }
    return tcl_guard(interp, [&] { return start_round(interp, std::move(l)); });
}

} // namespace

int Omu_ForeachNRCmd(ClientData, Tcl_Interp* interp, int objc, Tcl_Obj* const* objv) {
    return tcl_guard(interp, [&] {
        if (objc < 4 || objc % 2) {
            Tcl_WrongNumArgs(interp, 1, objv, "varList list ?varList list ...? command");
            return TCL_ERROR;
        }
        auto l = std::make_unique<loop>(static_cast<size_t>(objc - 2) / 2, objv[objc - 1]);
        if (open(interp, *l, objv + 1) != TCL_OK) {
            return TCL_ERROR;
        }
        if (l->rounds == 0) {
            Tcl_ResetResult(interp);
            return TCL_OK;
        }
        return start_round(interp, std::move(l));
    });
}

int Omu_ForeachObjCmd(ClientData data, Tcl_Interp* interp, int objc, Tcl_Obj* const* objv) {
    return Tcl_NRCallObjProc(interp, Omu_ForeachNRCmd, data, objc, objv);
}
