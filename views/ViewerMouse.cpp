#include <zel/ZelViewer.h>
#include <zel/platform/RectTracker.h>

#include <algorithm>

void ZelViewer::GetMouseStatus(unsigned flags, CPoint pt) {
    status_ = {};
    if (flags & MK_LBUTTON) status_.button = 1;
    if (flags & MK_RBUTTON) status_.button = 2;
    if (flags & MK_MBUTTON) status_.button = 3;
    status_.down = status_.button != 0;
    status_.shift = (flags & MK_SHIFT) != 0;
    status_.control = (flags & MK_CONTROL) != 0;
    status_.point = pt;
}

MouseStatus ZelViewer::GetMStatus(unsigned flags, CPoint pt) {
    GetMouseStatus(flags, pt);
    return status_;
}

// Cursors

void ZelViewer::ShowCursor(HCURSOR cursor) {
    if (!cursor || cursor == cursor_) return;
    view_->SetCapture();
    const HCURSOR previous = ::SetCursor(cursor);
    if (!cursor_) previousCursor_ = previous;
    cursor_ = cursor;
}

void ZelViewer::SetZoomCursor() {
    ShowCursor(LoadCursor(kZoomCursor));
}
void ZelViewer::SetVertCursor() {
    ShowCursor(LoadCursor(action_.cursor));
}

void ZelViewer::RestoreCursor() {
    if (cursor_) {
        ::SetCursor(previousCursor_);
        cursor_ = nullptr;
    }
    if (CWnd::GetCapture() == view_) ReleaseCapture();
    action_.cursor = ZEL_CURSOR_ARROW;
}

void ZelViewer::OnMouseEnter() {
    if (mode_ == MODE_PART || mode_ == MODE_DRAG_PART) SetVertCursor();
    if (mode_ == MODE_REDUCE || mode_ == MODE_ENLARGE) SetZoomCursor();
}

void ZelViewer::OnMouseExit() {
    const bool own =
        mode_ == MODE_PART || mode_ == MODE_DRAG_PART || mode_ == MODE_REDUCE || mode_ == MODE_ENLARGE;
    if (own) RestoreCursor();
}

void ZelViewer::SetMode(int mode) {
    if (mode == mode_) return;
    OnMouseExit();
    mode_ = mode;
}

// The rubber-band rectangle

void ZelViewer::ClearDragRectangle() {
    if (corner_ == anchor_ || !view_->Peer()) return;
    CClientDC dc(view_);
    dc.SetROP2(R2_NOTXORPEN);
    CPen dotted(PS_DOT, 1, RGB(0, 0, 0));
    CPen* previous = dc.SelectObject(&dotted);
    dc.MoveTo(anchor_);
    dc.LineTo(anchor_.x, corner_.y);
    dc.LineTo(corner_);
    dc.LineTo(corner_.x, anchor_.y);
    dc.LineTo(anchor_);
    dc.SelectObject(previous);
}

void ZelViewer::UpdateDragRectangle(CPoint pt) {
    ClearDragRectangle();
    corner_ = pt;
    ClearDragRectangle();
}

// Presses

void ZelViewer::OnLButtonDown(unsigned flags, CPoint pt) {
    GetMouseStatus(flags, pt);
    anchor_ = corner_ = pt;
    action_ = root_.OnMouse(status_);
    switch (mode_) {
        case MODE_SELECT:
            PressInSelectMode(flags, pt);
            break;
        case MODE_PART:
            dragObject_ = action_.object;
            dragPart_ = action_.index;
            if (dragObject_) {
                dragObject_->StartDrag(dragPart_);
                view_->SetCapture();
            }
            mode_ = MODE_DRAG_PART;
            break;
        case MODE_ZOOM_RECTANGLE: {
            SetZoomCursor();
            CRectTracker tracker;
            if (tracker.TrackRubberBand(view_, pt)) AdjustViewToRectangle(tracker.m_rect);
            RestoreCursor();
            mode_ = MODE_SELECT;
            break;
        }
        case MODE_REDUCE:
        case MODE_ENLARGE:
            Enlarge(pt, mode_ == MODE_ENLARGE ? 1 : 0);
            RestoreCursor();
            mode_ = MODE_SELECT;
            break;
        case MODE_OVER_SELECTION:
            StartDragOfSelection(pt);
            break;
        default:
            break;
    }
}

void ZelViewer::StartDragOfSelection(CPoint pt) {
    selection_.StartDrag(pt);
    mode_ = MODE_DRAG_SELECTION;
    view_->SetCapture();
}

void ZelViewer::PressInSelectMode(unsigned flags, const CPoint& pt) {
    if (action_.object && action_.object->Selected()) {
        StartDragOfSelection(pt);
        return;
    }
    CRectTracker tracker;
    if (tracker.TrackRubberBand(view_, pt)) {
        CRect area = tracker.m_rect;
        area.NormalizeRect();
        rubberBand_ = 1;
        selection_.RemoveAll();
        selection_.accumulate = 1;
        root_.SelectAt(area, &selection_);
    } else {
        if (root_.OnClick(pt)) return;
        rubberBand_ = flags & MK_SHIFT ? 1 : 0;
        if (!rubberBand_) selection_.RemoveAll();
        selection_.accumulate = rubberBand_;
        root_.SelectAt(pt, &selection_);
    }
    selection_.Select(1);
    const int count = static_cast<int>(selection_.GetSize());
    if (count > 0) selection_.SetFocus(selection_[count - 1]);
}

// Moves

// Without a button, the mode follows what lies under the pointer.
void ZelViewer::Hover(const CPoint& pt) {
    const MouseAction under = root_.OnMouse(status_);
    const bool part =
        under.object && (under.action == MouseAction::CONTROL_POINT || under.action == MouseAction::EDGE);
    if (part) {
        if (mode_ == MODE_PART && under.cursor != action_.cursor) OnMouseExit();
        action_ = under;
        mode_ = MODE_PART;
        OnMouseEnter();
        return;
    }
    OnMouseExit();
    action_ = under;
    const bool over = under.object && under.object->Selected() && selection_.IsIn(pt);
    mode_ = over ? MODE_OVER_SELECTION : MODE_SELECT;
    if (over) {
        ::SetCursor(LoadCursor(ZEL_CURSOR_SIZEALL));
    } else if (under.cursor != ZEL_CURSOR_ARROW) {
        ::SetCursor(LoadCursor(under.cursor));
    }
}

void ZelViewer::OnMouseMove(unsigned flags, CPoint pt) {
    GetMouseStatus(flags, pt);
    switch (mode_) {
        case MODE_SELECT:
        case MODE_PART:
        case MODE_OVER_SELECTION:
            if (!status_.down) Hover(pt);
            break;
        case MODE_DRAG_PART:
            if (dragObject_) dragObject_->Drag(dragPart_, pt);
            break;
        case MODE_DRAG_SELECTION:
            selection_.DragTo(pt);
            break;
        case MODE_REDUCE:
        case MODE_ENLARGE: {
            const CRect client(CPoint(), ClientSize());
            client.PtInRect(pt) ? OnMouseEnter() : OnMouseExit();
            break;
        }
        default:
            break;
    }
}

// Releases

void ZelViewer::ReleaseSelection(CPoint pt) {
    selection_.DragTo(pt);
    selection_.EndDrag();
    if (!(pt == anchor_)) return;
    // A click without a move gives the focus instead.
    Zel2* const hit = root_.OnMouse(status_).object;
    if (hit) {
        selection_.SetFocus(hit);
        if (IsExact()) hit->EditInPlace();
    } else {
        selection_.RemoveAll();
    }
}

void ZelViewer::OnLButtonUp(unsigned flags, CPoint pt) {
    GetMouseStatus(flags, pt);
    if (mode_ != MODE_PART && CWnd::GetCapture() == view_) ReleaseCapture();
    corner_ = pt;
    dragRectangle_ = CRect(std::min(anchor_.x, corner_.x), std::max(anchor_.y, corner_.y),
                           std::max(anchor_.x, corner_.x), std::min(anchor_.y, corner_.y));
    const bool moved = !(pt == anchor_);
    if (mode_ == MODE_DRAG_PART) {
        const bool sized = moved && dragObject_;
        if (dragObject_) {
            dragObject_->Drag(dragPart_, pt);
            dragObject_->EndDrag(dragPart_);
        }
        dragObject_ = nullptr;
        SetMode(MODE_SELECT);
        if (sized) TellEdit(zel::ViewerEdit::RESIZE);
    } else if (mode_ == MODE_DRAG_SELECTION) {
        ReleaseSelection(pt);
        SetMode(MODE_SELECT);
        if (moved && selection_.GetSize() > 0) TellEdit(zel::ViewerEdit::MOVE);
    }
}

// What the commands' buttons show

void ZelViewer::OnTestSelectObject() {
    SetMode(MODE_SELECT);
}
void ZelViewer::OnUpdateTestSelectObject(CCmdUI* ui) {
    ui->SetCheck(mode_ == MODE_SELECT);
}
void ZelViewer::OnUpdateZoomRectangle(CCmdUI* ui) {
    ui->SetCheck(mode_ == MODE_ZOOM_RECTANGLE);
}
void ZelViewer::OnUpdateZoomEnlarge(CCmdUI* ui) {
    ui->SetCheck(mode_ == MODE_ENLARGE);
}
void ZelViewer::OnUpdateZoomReduce(CCmdUI* ui) {
    ui->SetCheck(mode_ == MODE_REDUCE);
}
void ZelViewer::OnUpdateZoomFitwinhorizontaly(CCmdUI* ui) {
    ui->SetCheck(zoomType_ == ZOOM_FIT_HORIZONTALLY);
}
void ZelViewer::OnUpdateZoomFitwinverticaly(CCmdUI* ui) {
    ui->SetCheck(zoomType_ == ZOOM_FIT_VERTICALLY);
}
void ZelViewer::OnUpdateZoomFitwindow(CCmdUI* ui) {
    ui->SetCheck(zoomType_ == ZOOM_FIT_WINDOW);
}
