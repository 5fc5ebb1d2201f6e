#pragma once

#include <tcl.h>
#include <utility>

namespace vek::tcltasks {

/// Owns one reference of a Tcl value and gives it back at scope end. A value made with reference count zero
/// is adopted: it dies with its last tclobj_ref. Interpreter's thread only, as every Tcl value.
class tclobj_ref {
public:
    tclobj_ref() = default;
    tclobj_ref(Tcl_Obj* obj) : m_obj(obj) {
        if (m_obj) {
            Tcl_IncrRefCount(m_obj);
        }
    }
    tclobj_ref(const tclobj_ref& other) : tclobj_ref(other.m_obj) {}
    tclobj_ref(tclobj_ref&& other) noexcept : m_obj(std::exchange(other.m_obj, nullptr)) {}
    tclobj_ref& operator=(tclobj_ref other) noexcept {
        std::swap(m_obj, other.m_obj);
        return *this;
    }
    ~tclobj_ref() {
        if (m_obj) {
            Tcl_DecrRefCount(m_obj);
        }
    }

    Tcl_Obj* get() const { return m_obj; }
    Tcl_Obj* operator->() const { return m_obj; }
    explicit operator bool() const { return m_obj != nullptr; }

private:
    Tcl_Obj* m_obj = nullptr;
};

} // namespace vek::tcltasks
