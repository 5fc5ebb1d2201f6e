#include "design/cmds/object_query.h"

namespace design {

using namespace vek::tcltasks;

namespace {

void append_patterns(Tcl_Obj* word, std::vector<std::string>& out) {
    if (const detail::collection_wrapper_base* body = detail::get_collection(word)) {
        for (unsigned long i = 0; i < body->size(); ++i)
            out.push_back(body->get_element_as_string(i));
        return;
    }
    const std::string text = detail::is_list_type(word) ? std::string() : HTCTclEncoding::tclGetString(word);
    int count = 0;
    Tcl_Obj** elements = nullptr;
    // A word with blanks is a list unless an object has it for a name.
    const bool list = detail::is_list_type(word) ||
                      (text.find_first_of(" \t\n") != std::string::npos && !find_by_name<Cell>(text) &&
                       !find_by_name<Net>(text) && !find_by_name<Pin>(text) && !find_by_name<Port>(text));
    const tclobj_ref copy(list ? Tcl_DuplicateObj(word) : nullptr);
    if (!list || Tcl_ListObjGetElements(nullptr, copy.get(), &count, &elements) != TCL_OK) {
        out.push_back(text);
        return;
    }
    for (int i = 0; i < count; ++i)
        out.push_back(HTCTclEncoding::tclGetString(elements[i]));
}

} // namespace

Query query_of(const task_options_base& options) {
    Query query{options.get_option<bool>("hierarchical"),
                options.get_option<bool>("regexp"),
                options.get_option<bool>("nocase"),
                options.get_option<std::string>("filter"),
                {}};
    for (Tcl_Obj* word : options.get_option<std::vector<Tcl_Obj*>>("patterns"))
        append_patterns(word, query.patterns);
    return query;
}

void add_query_options(options_description& options, const char* plural) {
    const std::string them = plural;
    options.add_options()
        .add_option("hierarchical", options::flag(), "Look on all levels of hierarchy, not at the top only.")
        .add_option("regexp", options::flag(), "Patterns, and =~ in the filter, are regular expressions.")
        .add_option("nocase", options::flag(), "Match without regard to upper and lower case.")
        .add_option("filter", options::text(""), "Keep only " + them + " for which the expression holds.")
        .add_option("of_objects", options::value<ObjectList>(),
                    "Get the " + them + " that belong to these objects.")
        .excludes({"hierarchical"})
        .add_option("patterns", options::value<std::vector<Tcl_Obj*>>(),
                    "Names of " + them + ", or patterns with '*' and '?'.",
                    HTCTclTaskOptions::DefaultValueDescription("*"));
}

void warn_unmatched(const char* command, const std::vector<std::string>& patterns) {
    for (const std::string& pattern : patterns)
        ComMsgMgr::sendMsg("design", ComMsgMgr::MSGTYPE_WARNING, "@40-21@%s%s\n", command, pattern);
}

} // namespace design
