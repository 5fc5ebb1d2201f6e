// sample::pins ?-minimum N? ?-loud? PARTS: the number of pins of parts, those with less than N left out.
#include "sample_type.h"
#include "tcltasks/core/task.h"
using namespace vek::tcltasks;
namespace sample {
struct task : HTCITaskHelper<task> {
    static constexpr const char* command = "sample::pins";
    static void load_description() {
        description_instance("Count the pins of parts.", "number of pins")
            .add_options()
            .add_option("minimum", options::number(0), "Least number of pins of a part that counts")
            .add_option("loud", options::flag(), "Double the result")
            .add_option("parts", options::objects<part*>(), "Parts to look at");
        positional_instance().add("parts", 1);
    }
    int execute(Tcl_Interp* interp) override {
        const auto parts = get_option<tcl_collection<HSTVector<part*>>>("parts");
        int pins = 0;
        for (part* p : *parts)
            pins += p->pins >= get_option<int>("minimum") ? p->pins : 0;
        return set_result(interp, get_option<bool>("loud") ? 2 * pins : pins);
    }
};
extern const task_entry entry = entry_of<task>;
} // namespace sample
