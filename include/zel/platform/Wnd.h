// Windows.
#pragma once

#include <zel/platform/DC.h>
#include <zel/platform/Object.h>
#include <zel/platform/WindowPeer.h>

class CWnd : public CObject {
    DECLARE_DYNCREATE(CWnd)
  public:
    CWnd() = default;
    // A window on a peer, which is borrowed.
    explicit CWnd(zel::WindowPeer* peer) : peer_(peer) {}

    void AttachPeer(zel::WindowPeer* peer) { peer_ = peer; }
    zel::WindowPeer* Peer() const { return peer_; }
    // Marks an area (device pixels, the whole window when null) to be painted again. Nothing without a peer.
    void InvalidateRect(const RECT* area, BOOL erase = TRUE);

  private:
    zel::WindowPeer* peer_ = nullptr;
};

// A context on a window's client area, outside of painting. Throws CResourceException* for a window without a
// peer.
class CClientDC : public CDC {
    DECLARE_DYNAMIC(CClientDC)
  public:
    explicit CClientDC(CWnd* window);
};
