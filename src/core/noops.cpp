/*
 * Operations for units that this hardware does not have: video inputs, processing groups and overlay
 * regions. Applications call them all the same. They take anything and answer 0.
 */
#include "nvrhal.h"

#define NOOP(name)                                                                                           \
    int name(...)                                                                                            \
    {                                                                                                        \
        return 0;                                                                                            \
    }

NOOP(vo_mem_config)
NOOP(vo_bindvowbc)
NOOP(vo_unbindvowbc)
NOOP(vo_bind_vi)
NOOP(vodh0_bind_vodsd0)
NOOP(voChn_unbind_viChn)
NOOP(vpss_mem_config)
NOOP(vpss_create_vpss)
NOOP(vpss_stop)
NOOP(vi_bind_vpss)
NOOP(vi_unbind_vpss)
NOOP(vi_bind_vpss_chan)
NOOP(vi_unbind_vpss_chan)
NOOP(venc_bind_vo)
NOOP(venc_mem_config)
NOOP(venc_bind_vpss)
NOOP(venc_unbind_vpss)
NOOP(venc_stop_getstream)
NOOP(vdec_mem_config)
NOOP(vdec_bind_vo)
NOOP(rgn_mem_config)
NOOP(rgn_overlay_change_alpha)
NOOP(rgn_create)
NOOP(rgn_detach_frm_chn)
NOOP(rgn_destroy)
NOOP(rgn_show_or_hide)
NOOP(rgn_overlay_chg_color)
