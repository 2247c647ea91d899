#include <zel/platform/Archive.h>
#include <zel/platform/Object.h>

#include <cstring>
#include <mutex>
#include <string_view>
#include <unordered_map>

namespace {

struct Registry {
    std::mutex mutex;
    std::unordered_map<std::string_view, CRuntimeClass*> records;
};

// Made on first use: records register themselves while libraries are being loaded, in any order.
Registry& TheRegistry() {
    static Registry registry;
    return registry;
}

}  // namespace

CRuntimeClass CObject::classCObject = {"CObject", sizeof(CObject), NOT_SERIALIZABLE_SCHEMA, nullptr, nullptr};

void AfxClassInit(CRuntimeClass* record) {
    Registry& registry = TheRegistry();
    const std::lock_guard lock(registry.mutex);
    registry.records.try_emplace(record->m_lpszClassName, record);
}

bool CRuntimeClass::IsDerivedFrom(const CRuntimeClass* base) const {
    const CRuntimeClass* record = this;
    while (record && record != base) record = record->m_pBaseClass;
    return record != nullptr;
}

CRuntimeClass* CRuntimeClass::FromName(const char* name) {
    Registry& registry = TheRegistry();
    const std::lock_guard lock(registry.mutex);
    const auto found = registry.records.find(name);
    return found != registry.records.end() ? found->second : nullptr;
}

CObject::~CObject() = default;
CRuntimeClass* CObject::GetRuntimeClass() const {
    return &classCObject;
}
void CObject::Serialize(CArchive&) {}
void CObject::AssertValid() const {}
void CObject::Dump(CDumpContext&) const {}

CObject* zel::ReadKnownObject(CArchive& ar, const CRuntimeClass* expected) {
    return ar.ReadObject(expected);
}
