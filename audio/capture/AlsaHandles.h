#pragma once
// Owning wrappers for the alsa-lib handles the capture engine uses. Each
// handle is put into one of these on the line that creates it.

#include <alsa/asoundlib.h>
#include <cstdlib>
#include <memory>

namespace mirabend::alsa {

struct PcmCloser {
    void operator()(snd_pcm_t* pcm) const { snd_pcm_close(pcm); }
};
using Pcm = std::unique_ptr<snd_pcm_t, PcmCloser>;

struct MixerCloser {
    void operator()(snd_mixer_t* mixer) const { snd_mixer_close(mixer); }
};
using Mixer = std::unique_ptr<snd_mixer_t, MixerCloser>;

struct HintsFree {
    void operator()(void** hints) const { snd_device_name_free_hint(hints); }
};
using Hints = std::unique_ptr<void*, HintsFree>;

struct HwParamsFree {
    void operator()(snd_pcm_hw_params_t* p) const { snd_pcm_hw_params_free(p); }
};
using HwParams = std::unique_ptr<snd_pcm_hw_params_t, HwParamsFree>;

struct SwParamsFree {
    void operator()(snd_pcm_sw_params_t* p) const { snd_pcm_sw_params_free(p); }
};
using SwParams = std::unique_ptr<snd_pcm_sw_params_t, SwParamsFree>;

struct SelemIdFree {
    void operator()(snd_mixer_selem_id_t* id) const { snd_mixer_selem_id_free(id); }
};
using SelemId = std::unique_ptr<snd_mixer_selem_id_t, SelemIdFree>;

// Strings that alsa-lib hands out with malloc().
struct CFree {
    void operator()(char* s) const { std::free(s); }
};
using CString = std::unique_ptr<char, CFree>;

} // namespace mirabend::alsa
