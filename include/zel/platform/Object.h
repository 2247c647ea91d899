// The base of all classes with a run-time class record.
#pragma once

#include <zel/platform/WinTypes.h>

class CArchive;
class CDumpContext;
class CObject;

// Schemas: a class of this schema cannot be stored; one with this bit reads archives of other schemas too.
inline constexpr UINT NOT_SERIALIZABLE_SCHEMA = 0xFFFF;
inline constexpr UINT VERSIONABLE_SCHEMA = 0x80000000;
// A class with this bit is known to the complete dialect of archives only.
inline constexpr UINT DOCUMENT_SCHEMA = 0x40000000;

// What is known of a class at run time. Records live as long as the process and are registered by name when
// the library that holds them is loaded; look-ups are safe from any thread.
struct CRuntimeClass {
    const char* m_lpszClassName;
    int m_nObjectSize;
    UINT m_wSchema;
    CObject* (*m_pfnCreateObject)();  // null: cannot be created by name
    CRuntimeClass* m_pBaseClass;      // null for CObject

    // A new default-constructed object, owned by the caller; null when the class cannot be created.
    CObject* CreateObject() const { return m_pfnCreateObject ? m_pfnCreateObject() : nullptr; }
    bool IsDerivedFrom(const CRuntimeClass* base) const;
    bool IsSerializable() const {
        return m_pfnCreateObject && (m_wSchema & 0xFFFF) != NOT_SERIALIZABLE_SCHEMA;
    }
    // The registered record of that name; null when there is none.
    static CRuntimeClass* FromName(const char* name);
};

// Registers a record; the first of a name wins.
void AfxClassInit(CRuntimeClass* record);

class CObject {
  public:
    virtual CRuntimeClass* GetRuntimeClass() const;
    virtual ~CObject();
    // Stores or loads the object's fields; the base has none.
    virtual void Serialize(CArchive& ar);
    virtual void AssertValid() const;
    virtual void Dump(CDumpContext& dc) const;
    // The class under which archives keep the object. Another one than GetRuntimeClass() for objects that
    // write what an object of that class would, and come back as one.
    virtual CRuntimeClass* GetArchiveClass() const { return GetRuntimeClass(); }
    // The same for archives of the complete dialect, where it differs for classes that host programs know
    // under the record of their base.
    virtual CRuntimeClass* GetDocumentClass() const { return GetArchiveClass(); }

    bool IsKindOf(const CRuntimeClass* record) const { return GetRuntimeClass()->IsDerivedFrom(record); }
    bool IsSerializable() const { return GetRuntimeClass()->IsSerializable(); }

    static CRuntimeClass classCObject;
    static CRuntimeClass* GetThisClass() { return &classCObject; }

  protected:
    CObject() = default;
    CObject(const CObject&) = default;
    CObject& operator=(const CObject&) = default;
};

namespace zel {
// Reads an object of a class from an archive; see CArchive::ReadObject.
CObject* ReadKnownObject(CArchive& ar, const CRuntimeClass* expected);

struct ClassRegistration {
    explicit ClassRegistration(CRuntimeClass* record) { AfxClassInit(record); }
};
}  // namespace zel

#define RUNTIME_CLASS(name) (&name::class##name)

#define DECLARE_DYNAMIC(name)                         \
  public:                                             \
    static CRuntimeClass class##name;                 \
    static CRuntimeClass* GetThisClass() {            \
        return &class##name;                          \
    }                                                 \
    CRuntimeClass* GetRuntimeClass() const override { \
        return &class##name;                          \
    }

#define DECLARE_DYNCREATE(name) \
    DECLARE_DYNAMIC(name)       \
    static CObject* CreateObject();

#define DECLARE_SERIAL(name)                                                       \
    DECLARE_DYNCREATE(name)                                                        \
    friend CArchive& operator>>(CArchive& ar, name*& object) {                     \
        object = static_cast<name*>(zel::ReadKnownObject(ar, &name::class##name)); \
        return ar;                                                                 \
    }

#define ZEL_CLASS_RECORD(name, base, schema, create)                                             \
    CRuntimeClass name::class##name = {#name, sizeof(name), schema, create, &base::class##base}; \
    static const zel::ClassRegistration registrationOf##name(&name::class##name);

#define IMPLEMENT_DYNAMIC(name, base) ZEL_CLASS_RECORD(name, base, NOT_SERIALIZABLE_SCHEMA, nullptr)

#define IMPLEMENT_DYNCREATE(name, base) \
    CObject* name::CreateObject() {     \
        return new name();              \
    }                                   \
    ZEL_CLASS_RECORD(name, base, NOT_SERIALIZABLE_SCHEMA, &name::CreateObject)

// For classes that host programs know under the record of their base: documents keep them under their own
// name.
#define DECLARE_DOCUMENT_CLASS(name) \
  public:                            \
    CRuntimeClass* GetDocumentClass() const override;

#define IMPLEMENT_DOCUMENT_CLASS(name, base)                                                           \
    static CObject* CreateDocumentObjectOf##name() {                                                   \
        return new name();                                                                             \
    }                                                                                                  \
    static CRuntimeClass documentClassOf##name = {#name, sizeof(name), DOCUMENT_SCHEMA,                \
                                                  &CreateDocumentObjectOf##name, RUNTIME_CLASS(base)}; \
    static const zel::ClassRegistration documentRegistrationOf##name(&documentClassOf##name);          \
    CRuntimeClass* name::GetDocumentClass() const {                                                    \
        return &documentClassOf##name;                                                                 \
    }

#define IMPLEMENT_SERIAL(name, base, schema) \
    CObject* name::CreateObject() {          \
        return new name();                   \
    }                                        \
    ZEL_CLASS_RECORD(name, base, schema, &name::CreateObject)
