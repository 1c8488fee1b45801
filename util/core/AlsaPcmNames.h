#pragma once
// ALSA announces, next to the real inputs, PCM plugins that are no input of
// their own: rate converters, channel mixers, the null sink, bridges to sound
// systems that are rarely running. Both device lists (the audio recorder's and
// the screen recorder's) leave them out by this one rule.

#include <set>
#include <string>

namespace mirabend {

// `pcm` is the hint's NAME ("lavrate", "pulse", "hw:CARD=PCH,DEV=0").
inline bool isAlsaHelperPcm(const std::string& pcm)
{
    static const std::set<std::string> helpers = {"null", "lavrate", "samplerate", "speexrate", "speex", "upmix",
                                                  "vdownmix", "jack", "oss", "a52", "usbstream", "arcam_av"};
    return helpers.count(pcm.substr(0, pcm.find(':'))) > 0;
}

} // namespace mirabend
