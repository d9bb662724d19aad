// The right to run an operation that owns the port. Whoever can't get it, because
// another session is on the stack or still unwinding after Stop, does nothing.
//
//     Session_Lease lease(frm);
//     if (!lease.granted()) return;
#pragma once

#include "frmMain.h"

namespace vkm {

class Session_Lease {
  public:
    explicit Session_Lease(frmMain& frm) : frm_(frm), granted_(!frm.session.Running) {
        frm.session.Running = true;
    }
    ~Session_Lease() {
        if (granted_) frm_.session.Running = false;
    }
    Session_Lease(const Session_Lease&) = delete;
    Session_Lease& operator=(const Session_Lease&) = delete;

    bool granted() const { return granted_; }

  private:
    frmMain& frm_;
    const bool granted_;
};

}  // namespace vkm
