#include "platform/param/HPAParamMgr.h"

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <limits>
#include <map>
#include <mutex>
#include <optional>
#include <system_error>
#include <unordered_map>

#include "platform/env/HSTStringUtils.h"
#include "platform/env/HUTEnv.h"
#include "platform/env/HUTFile.h"
#include "platform/msg/ComMsgMgr.h"
#include "platform/msg/DataFileScanner.h"
#include "platform/msg/HEX.h"
#include "platform/param/HPAParamFile.h"
#include "platform/param/HPAParamHelper.h"
#include "platform/param/HPAParamText.h"

namespace {

template <class... Args>
[[noreturn]] void raise(com_msg_mgr::Key<std::type_identity_t<Args>...> key, const Args&... args) {
    throw HEXError(ComMsgMgrInstance("common", ComMsgMgr::MSGTYPE_ERROR, key, args...));
}

/// The one kind of parameter: a declaration and a value beside it.
class Param final : public HPAParam {
public:
    explicit Param(HPAParamDeclaration declaration) : m_declaration(std::move(declaration)) {
        name = m_declaration.name;
        description = m_declaration.description;
        visible = m_declaration.visible ? 1 : 0;
        state = m_declaration.state;
        reset_to_default();
    }

    HPAType type() const override { return m_declaration.type; }
    bool has_range() const override { return m_declaration.hasRange; }
    int int_min() const override { return m_declaration.intMin; }
    int int_max() const override { return m_declaration.intMax; }
    float float_min() const override { return m_declaration.floatMin; }
    float float_max() const override { return m_declaration.floatMax; }

    bool bool_value() const override { return type() == HPA_FLOAT ? m_float.load() != 0 : m_int.load() != 0; }
    int int_value() const override { return type() == HPA_FLOAT ? to_int(m_float) : m_int.load(); }
    float float_value() const override {
        return type() == HPA_FLOAT ? m_float.load() : static_cast<float>(m_int.load());
    }
    std::string string_value() const override {
        if (type() != HPA_STRING)
            return HPAParamMgr::valueText(*this);
        std::lock_guard lock(m_mutex);
        return m_string;
    }

    bool bool_default() const override {
        return type() == HPA_FLOAT ? m_declaration.floatDefault != 0 : int_default() != 0;
    }
    int int_default() const override {
        return type() == HPA_FLOAT                          ? to_int(m_declaration.floatDefault)
               : type() == HPA_BOOL || type() == HPA_LINKED ? m_declaration.boolDefault
                                                            : m_declaration.intDefault;
    }
    float float_default() const override {
        return type() == HPA_FLOAT ? m_declaration.floatDefault : static_cast<float>(int_default());
    }
    std::string string_default() const override {
        return type() == HPA_STRING ? m_declaration.stringDefault : HPAParamMgr::defaultText(*this);
    }

    void set_bool(bool value) override {
        if (type() == HPA_STRING)
            set_string(value ? "1" : "0");
        else
            set_int(value ? 1 : 0);
    }
    void set_int(int value) override {
        if (type() == HPA_STRING)
            return set_string(std::to_string(value));
        if (type() == HPA_FLOAT)
            return set_float(static_cast<float>(value));
        m_int = type() == HPA_INT ? value : value != 0;
        m_isSet = true;
    }
    void set_float(float value) override {
        if (type() == HPA_STRING)
            return set_string(hpa_param_text::from_float(value));
        if (type() != HPA_FLOAT)
            return type() == HPA_INT ? set_int(to_int(value)) : set_bool(value != 0);
        m_float = value;
        m_isSet = true;
    }
    void set_string(const std::string& value) override {
        if (type() == HPA_STRING) {
            std::lock_guard lock(m_mutex);
            m_string = value;
            m_isSet = true;
        } else if (type() == HPA_INT) {
            set_int(hpa_param_text::to_int(value).value_or(0));
        } else if (type() == HPA_FLOAT) {
            set_float(hpa_param_text::to_float(value).value_or(0));
        } else {
            set_bool(hpa_param_text::to_bool(value).value_or(false));
        }
    }
    void reset_to_default() override {
        std::lock_guard lock(m_mutex);
        m_int = type() == HPA_FLOAT ? 0 : int_default();
        m_float = m_declaration.floatDefault;
        m_string = m_declaration.stringDefault;
        m_isSet = false;
    }

    LinkedMap::const_iterator linked_begin() const override { return m_declaration.linked.begin(); }
    LinkedMap::const_iterator linked_end() const override { return m_declaration.linked.end(); }
    bool is_set() const override { return m_isSet; }
    const std::vector<std::string>& values() const override { return m_declaration.values; }

private:
    static int to_int(float value) {
        if (value >= static_cast<float>(std::numeric_limits<int>::max()))
            return std::numeric_limits<int>::max();
        if (value <= static_cast<float>(std::numeric_limits<int>::min()))
            return std::numeric_limits<int>::min();
        return static_cast<int>(value);
    }

    const HPAParamDeclaration m_declaration;
    std::atomic<int> m_int{0};
    std::atomic<float> m_float{0};
    std::atomic<bool> m_isSet{false};
    mutable std::mutex m_mutex; // guards m_string
    std::string m_string;
};

/// Why a manager could not be made. Kept as data: making the exception looks up a message text, and that may
/// ask for a parameter.
struct LoadFailure {
    std::string file; ///< empty: no file was found
    unsigned line = 0, column = 0;
    std::string what;

    [[noreturn]] void raise() const {
        if (file.empty())
            ::raise("@17-5202@%s\n", what);
        ::raise("@17-5203@%s%u%u%s\n", file, line, column, what);
    }
};

std::string directory_under(const std::string& root) {
    return root + "/data/param";
}

/// The parameter files of a root, in order of name.
std::vector<std::string> files_under(const std::string& root) {
    std::vector<std::string> files;
    std::error_code error;
    for (std::filesystem::directory_iterator it(directory_under(root), error), end; !error && it != end;
         it.increment(error))
        if (it->path().extension() == ".param")
            files.push_back(it->path().string());
    std::sort(files.begin(), files.end());
    return files;
}

} // namespace

struct HPAParamMgr::Impl {
    std::vector<std::unique_ptr<Param>> owned;
    std::vector<HPAParam*> sorted;
    std::unordered_map<std::string_view, HPAParam*> byName;

    std::mutex mutex; // guards listeners and nextListener
    std::map<std::uint64_t, std::shared_ptr<const std::function<void(HPAParam&)>>> listeners;
    std::uint64_t nextListener = 1;

    /// Reads the files of the roots; of two parameters of one name the earlier root's counts.
    std::optional<LoadFailure> load(const std::vector<std::string>& roots) {
        bool any = false;
        for (const std::string& root : roots)
            for (const std::string& file : files_under(root)) {
                any = true;
                if (auto failure = loadFile(file))
                    return failure;
            }
        if (!any) {
            LoadFailure failure;
            for (const std::string& root : roots)
                failure.what += (failure.what.empty() ? "'" : ", '") + directory_under(root) + '\'';
            return failure;
        }
        std::sort(sorted.begin(), sorted.end(), [](auto* a, auto* b) { return a->name < b->name; });
        return std::nullopt;
    }

    std::optional<LoadFailure> loadFile(const std::string& file) {
        try {
            for (HPAParamDeclaration& declaration : parse_param_file(HUTFile::read(file))) {
                if (byName.count(declaration.name))
                    continue;
                auto param = std::make_unique<Param>(std::move(declaration));
                byName.emplace(param->name, param.get());
                sorted.push_back(param.get());
                owned.push_back(std::move(param));
            }
        } catch (const DataFileScanner::Error& error) {
            return LoadFailure{file, error.line, error.column, error.what()};
        } catch (const std::system_error& error) {
            return LoadFailure{file, 0, 0, error.what()};
        }
        return std::nullopt;
    }
};

HPAParamMgr& HPAParamMgr::getParamMgr() {
    struct Loaded {
        std::unique_ptr<HPAParamMgr> manager;
        std::optional<LoadFailure> failure;
    };
    static const Loaded& loaded = *[] {
        auto* made = new Loaded;
        made->manager.reset(new HPAParamMgr);
        made->failure = made->manager->m_impl->load(HUTEnv::getOMUAppRootList());
        return made;
    }();
    if (loaded.failure)
        loaded.failure->raise();
    return *loaded.manager;
}

HPAParamMgr::HPAParamMgr() : m_impl(std::make_unique<Impl>()) {}

HPAParamMgr::HPAParamMgr(const std::vector<std::string>& roots) : HPAParamMgr() {
    if (const auto failure = m_impl->load(roots))
        failure->raise();
}

HPAParamMgr::~HPAParamMgr() = default;

HPAParam* HPAParamMgr::findParam(std::string_view name) const {
    const auto found = m_impl->byName.find(name);
    return found == m_impl->byName.end() ? nullptr : found->second;
}

HPAParam* HPAParamMgr::findParamNoCase(std::string_view name) const {
    const auto found =
        std::find_if(m_impl->sorted.begin(), m_impl->sorted.end(),
                     [name](const HPAParam* param) { return HSTStringUtils::iequals(param->name, name); });
    return found == m_impl->sorted.end() ? nullptr : *found;
}

void HPAParamMgr::findMatchingParams(std::string_view pattern, std::vector<HPAParam*>& out,
                                     bool includeHidden, bool onlyNonDefault) const {
    for (HPAParam* param : m_impl->sorted) {
        const bool wanted = (includeHidden || param->visible) &&
                            (!onlyNonDefault || valueText(*param) != defaultText(*param));
        if (wanted && HSTStringUtils::glob_match(pattern, param->name))
            out.push_back(param);
    }
}

const std::vector<HPAParam*>& HPAParamMgr::params() const {
    return m_impl->sorted;
}

HPAParam& HPAParamMgr::require(std::string_view name) const {
    HPAParam* param = findParam(name);
    if (!param)
        raise("@17-153@%s\n", name);
    return *param;
}

bool HPAParamMgr::getValueAsBool(std::string_view name) const {
    return require(name).bool_value();
}
int HPAParamMgr::getValueAsInt(std::string_view name) const {
    return require(name).int_value();
}
double HPAParamMgr::getValueAsDouble(std::string_view name) const {
    return require(name).float_value();
}
std::string HPAParamMgr::getValueAsString(std::string_view name) const {
    return require(name).string_value();
}

bool HPAParamMgr::getValueIfExistAsBool(std::string_view name) const {
    const HPAParam* param = findParam(name);
    return param && param->bool_value();
}

namespace {

[[noreturn]] void raise_wrong_type(const char* expected) {
    raise("@17-152@%s\n", expected);
}

void check_listed(const HPAParam& param, const std::string& value) {
    const auto& values = param.values();
    if (values.empty() || std::find(values.begin(), values.end(), value) != values.end())
        return;
    std::string accepted;
    for (const std::string& one : values)
        accepted += (accepted.empty() ? "'" : ", '") + one + '\'';
    raise("@17-5204@%s%s%s\n", value, param.name, accepted);
}

bool is_boolean(const HPAParam& param) {
    return param.type() == HPA_BOOL || param.type() == HPA_LINKED;
}

} // namespace

void HPAParamMgr::setBoolValue(std::string_view name, bool value) {
    setBool(require(name), value);
}

void HPAParamMgr::setBool(HPAParam& param, bool value) {
    if (!is_boolean(param))
        raise_wrong_type(param.type() == HPA_INT ? "int" : param.type() == HPA_FLOAT ? "float" : "string");
    param.set_bool(value);
    changed(param);
    for (auto it = param.linked_begin(); it != param.linked_end(); ++it) {
        HPAParam* exact = findParam(it->first);
        HPAParam* other = exact ? exact : findParamNoCase(it->first);
        if (!other)
            raise("@17-153@%s\n", it->first);
        const bool itsValue = it->second == value;
        other->set_bool(itsValue);
        changed(*other);
        if (other->visible)
            ComMsgMgr::sendMsg("common", ComMsgMgr::MSGTYPE_INFO, "@17-1664@%s%s", other->name,
                               itsValue ? "true" : "false");
    }
}

void HPAParamMgr::setIntValue(std::string_view name, int value) {
    HPAParam& param = require(name);
    if (param.type() == HPA_FLOAT)
        return setFloatValue(name, value);
    if (param.type() != HPA_INT)
        raise_wrong_type(is_boolean(param) ? "bool" : "string");
    param_helper::check_int_range(param, value);
    param.set_int(value);
    changed(param);
}

void HPAParamMgr::setFloatValue(std::string_view name, double value) {
    HPAParam& param = require(name);
    if (param.type() != HPA_FLOAT)
        raise_wrong_type(is_boolean(param) ? "bool" : param.type() == HPA_INT ? "int" : "string");
    param_helper::check_float_range(param, value);
    param.set_float(static_cast<float>(value));
    changed(param);
}

void HPAParamMgr::setStringValue(std::string_view name, const std::string& value) {
    HPAParam& param = require(name);
    check_listed(param, value);
    setValue(param, value);
}

void HPAParamMgr::setValue(std::string_view name, std::string_view text) {
    setValue(require(name), text);
}

void HPAParamMgr::setValue(HPAParam& param, std::string_view text) {
    switch (param.type()) {
    case HPA_BOOL:
    case HPA_LINKED: {
        bool value = false;
        if (!param_helper::to_bool(text, value))
            raise_wrong_type("bool");
        return setBool(param, value);
    }
    case HPA_INT: {
        const auto value = hpa_param_text::to_int(text);
        if (!value)
            raise_wrong_type("int");
        param_helper::check_int_range(param, *value);
        param.set_int(*value);
        break;
    }
    case HPA_FLOAT: {
        const auto value = hpa_param_text::to_number(text);
        if (!value)
            raise_wrong_type("float");
        param_helper::check_float_range(param, *value);
        param.set_float(static_cast<float>(*value));
        break;
    }
    case HPA_STRING:
        param.set_string(std::string(text));
        break;
    }
    changed(param);
}

void HPAParamMgr::reset(std::string_view name) {
    HPAParam& param = require(name);
    param.reset_to_default();
    changed(param);
    for (auto it = param.linked_begin(); it != param.linked_end(); ++it) {
        HPAParam* other = findParam(it->first);
        if (!other)
            continue;
        const bool value = it->second == param.bool_value();
        other->set_bool(value);
        changed(*other);
        ComMsgMgr::sendMsg("common", ComMsgMgr::MSGTYPE_INFO, "@17-1665@%s%s", other->name,
                           value ? "true" : "false");
    }
}

bool HPAParamMgr::isSet(std::string_view name) const {
    return require(name).is_set();
}

std::string HPAParamMgr::valueText(const HPAParam& param) {
    switch (param.type()) {
    case HPA_INT:
        return std::to_string(param.int_value());
    case HPA_FLOAT:
        return hpa_param_text::from_float(param.float_value());
    case HPA_STRING:
        return param.string_value();
    default:
        return param.bool_value() ? "1" : "0";
    }
}

std::string HPAParamMgr::defaultText(const HPAParam& param) {
    switch (param.type()) {
    case HPA_INT:
        return std::to_string(param.int_default());
    case HPA_FLOAT:
        return hpa_param_text::from_float(param.float_default());
    case HPA_STRING:
        return param.string_default();
    default:
        return param.bool_default() ? "1" : "0";
    }
}

std::uint64_t HPAParamMgr::addListener(std::function<void(HPAParam&)> listener) {
    std::lock_guard lock(m_impl->mutex);
    m_impl->listeners.emplace(m_impl->nextListener,
                              std::make_shared<const std::function<void(HPAParam&)>>(std::move(listener)));
    return m_impl->nextListener++;
}

void HPAParamMgr::removeListener(std::uint64_t id) {
    std::lock_guard lock(m_impl->mutex);
    m_impl->listeners.erase(id);
}

void HPAParamMgr::changed(HPAParam& param) {
    std::vector<std::shared_ptr<const std::function<void(HPAParam&)>>> listeners;
    {
        std::lock_guard lock(m_impl->mutex);
        for (const auto& [id, listener] : m_impl->listeners)
            listeners.push_back(listener);
    }
    for (const auto& listener : listeners)
        (*listener)(param);
}
