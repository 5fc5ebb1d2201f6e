#pragma once

#include <memory>
#include <string>
#include <tcl.h>

namespace vek::tcltasks {

class tclany;

/// Remembers where the elements of a collection came from. Shared by the collections made from one another.
class HTCICollectionContext {
public:
    virtual ~HTCICollectionContext() = default;

    /// The whole text by which a collection with this context may show itself in place of its elements.
    virtual std::string string_rep() const = 0;

    /// True if windows are not to hear of a change that is made to the whole collection.
    virtual bool is_silent() const { return false; }

    /// Notes a value, and all that another context notes, as sources of elements.
    virtual void add(Tcl_Obj* source) = 0;
    virtual void add(const HTCICollectionContext& other) = 0;
};

/// Makes contexts and joins them. Interpreter's thread.
class HTCCollectionContextMgr {
public:
    /// An empty context for elements that came from list values. It keeps the text of at most 100 sources:
    /// beyond that a context would cost more than the elements whose origin it tells.
    static std::shared_ptr<HTCICollectionContext> createListCollectionContext();

    static void addTclObjToCtx(Tcl_Obj* source, const std::shared_ptr<HTCICollectionContext>& context);

    /// Joins what `from` notes into `into`; either may be null.
    static void append(const std::shared_ptr<HTCICollectionContext>& into,
                       const std::shared_ptr<HTCICollectionContext>& from);
};

} // namespace vek::tcltasks
