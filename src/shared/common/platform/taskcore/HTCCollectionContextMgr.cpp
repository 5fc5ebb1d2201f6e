#include "platform/taskcore/HTCCollectionContextMgr.h"

#include <vector>

#include "platform/taskcore/collection_wrapper_base.h"
#include "platform/tcl/HTCTclEncoding.h"

namespace vek::tcltasks {

namespace {

class list_context : public HTCICollectionContext {
public:
    std::string string_rep() const override {
        std::string text;
        for (const std::string& source : m_sources) {
            text += text.empty() ? "" : " ";
            text += source;
        }
        return m_more ? text + " ..." : text;
    }

    void add(Tcl_Obj* source) override {
        // A value whose text was never asked for does not get one made for the sake of its origin.
        if (source->bytes && !detail::get_collection(source)) {
            note(HTCTclEncoding::tclGetString(source));
        }
    }

    void add(const HTCICollectionContext& other) override {
        if (const auto* list = dynamic_cast<const list_context*>(&other)) {
            for (const std::string& source : list->m_sources) {
                note(source);
            }
        } else {
            note(other.string_rep());
        }
    }

private:
    void note(const std::string& source) {
        if (m_sources.size() < 100) {
            m_sources.push_back(source);
        } else {
            m_more = true;
        }
    }

    std::vector<std::string> m_sources;
    bool m_more = false;
};

} // namespace

std::shared_ptr<HTCICollectionContext> HTCCollectionContextMgr::createListCollectionContext() {
    return std::make_shared<list_context>();
}

void HTCCollectionContextMgr::addTclObjToCtx(Tcl_Obj* source,
                                             const std::shared_ptr<HTCICollectionContext>& context) {
    if (context) {
        context->add(source);
    }
}

void HTCCollectionContextMgr::append(const std::shared_ptr<HTCICollectionContext>& into,
                                     const std::shared_ptr<HTCICollectionContext>& from) {
    if (into && from && into != from) {
        into->add(*from);
    }
}

} // namespace vek::tcltasks
