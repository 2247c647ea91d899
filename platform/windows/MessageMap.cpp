#include <zel/platform/CmdTarget.h>

IMPLEMENT_DYNAMIC(CCmdTarget, CObject)

const AFX_MSGMAP_ENTRY* AFX_MSGMAP::Find(UINT message, int code, UINT id) const {
    for (const AFX_MSGMAP* map = this; map; map = map->base ? map->base() : nullptr) {
        for (const AFX_MSGMAP_ENTRY* entry = map->entries; entry->invoke; ++entry) {
            if (entry->message == message && entry->code == code && id >= entry->firstId &&
                id <= entry->lastId)
                return entry;
        }
    }
    return nullptr;
}

const AFX_MSGMAP* CCmdTarget::GetThisMessageMap() {
    static const AFX_MSGMAP_ENTRY none[] = {{0, 0, 0, 0, nullptr}};
    static const AFX_MSGMAP map{nullptr, none};
    return &map;
}

const AFX_MSGMAP* CCmdTarget::GetMessageMap() const {
    return GetThisMessageMap();
}

BOOL CCmdTarget::OnCmdMsg(UINT id, int code, void* extra, AFX_CMDHANDLERINFO* info) {
    const AFX_MSGMAP_ENTRY* entry = GetMessageMap()->Find(WM_COMMAND, code, id);
    if (!entry) return FALSE;
    if (info) {
        info->pTarget = this;
        return TRUE;
    }
    zel::MessageArguments args{.message = WM_COMMAND, .wParam = id};
    if (code != CN_UPDATE_COMMAND_UI) return entry->invoke(this, args) ? TRUE : FALSE;
    args.ui = static_cast<CCmdUI*>(extra);
    args.ui->m_bContinueRouting = FALSE;
    entry->invoke(this, args);
    return args.ui->m_bContinueRouting ? FALSE : TRUE;
}

void CCmdUI::Enable(BOOL on) {
    m_bEnableChanged = TRUE;
    m_bEnabled = on;
}

void CCmdUI::SetCheck(int check) {
    m_nCheck = check;
}

BOOL CCmdUI::DoUpdate(CCmdTarget* target, BOOL disableUnhandled) {
    m_bEnableChanged = FALSE;
    const BOOL handled = target->OnCmdMsg(m_nID, CN_UPDATE_COMMAND_UI, this, nullptr);
    if (m_bEnableChanged || !disableUnhandled) return handled;
    // What says nothing about itself can be chosen if somebody takes the command.
    AFX_CMDHANDLERINFO info;
    Enable(target->OnCmdMsg(m_nID, CN_COMMAND, nullptr, &info));
    return handled;
}
