// SPDX-License-Identifier: GPL-3.0-or-later
#include "quicktime/model/componentregistry.h"

#include "base/dialogue/replaceable.h"

#include <cstdint>
#include <vector>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

namespace tavrix
{

namespace
{

struct Encoder {
    QByteArray name;
    ComponentDescription description;
};

// libavcodec is safe to use from several threads.
constexpr quint32 cmpThreadSafe = 0x10000000;

struct ProresProfile {
    const char* name;
    quint32 code;
};

// One codec with six tags: a component each, under the names that their files carry.
constexpr ProresProfile proresProfiles[] = {
    {"Apple ProRes 4444 XQ", fourCharCode("ap4x")}, {"Apple ProRes 4444", fourCharCode("ap4h")},
    {"Apple ProRes 422 HQ", fourCharCode("apch")},  {"Apple ProRes 422", fourCharCode("apcn")},
    {"Apple ProRes 422 LT", fourCharCode("apcs")},  {"Apple ProRes 422 Proxy", fourCharCode("apco")},
};

Encoder encoderOf(const QByteArray& name, quint32 subType, quint32 manufacturer)
{
    Encoder encoder;
    encoder.name = name;
    encoder.description.componentType = fourCharCode("imco");
    encoder.description.componentSubType = subType;
    encoder.description.componentManufacturer = manufacturer;
    encoder.description.componentFlags = cmpThreadSafe;
    return encoder;
}

quint32 subTypeOf(AVCodecID id)
{
    unsigned int tag = 0;
    const AVCodecTag* const movTags[] = {avformat_get_mov_video_tags(), nullptr};
    if (av_codec_get_tag2(movTags, id, &tag) != 0) {
        return fourCharCodeOfTag(tag);
    }
    const AVCodecTag* const riffTags[] = {avformat_get_riff_video_tags(), nullptr};
    if (av_codec_get_tag2(riffTags, id, &tag) != 0) {
        return fourCharCodeOfTag(tag);
    }
    return 0;
}

std::vector<Encoder> installedEncoders()
{
    // The Apple Intermediate encoder comes with the program itself; libavcodec only decodes it.
    std::vector<Encoder> encoders{encoderOf("Apple Intermediate Codec", fourCharCode("icod"), fourCharCode("appl"))};
    bool proresListed = false;
    void* position = nullptr;
    while (const AVCodec* codec = av_codec_iterate(&position)) {
        if (av_codec_is_encoder(codec) == 0 || codec->type != AVMEDIA_TYPE_VIDEO || codec->id == AV_CODEC_ID_AIC) {
            continue;
        }
        if (codec->id == AV_CODEC_ID_PRORES) {
            if (!proresListed) {
                for (const ProresProfile& profile : proresProfiles) {
                    encoders.push_back(encoderOf(profile.name, profile.code, fourCharCode("appl")));
                }
            }
            proresListed = true;
            continue;
        }
        const quint32 subType = subTypeOf(codec->id);
        if (subType != 0) {
            const char* name = codec->long_name != nullptr ? codec->long_name : codec->name;
            encoders.push_back(encoderOf(name, subType, fourCharCode("lavc")));
        }
    }
    return encoders;
}

bool matches(const ComponentDescription& found, const ComponentDescription& search)
{
    const auto same = [](quint32 wanted, quint32 code) {
        return wanted == 0 || wanted == code;
    };
    return same(search.componentType, found.componentType) && same(search.componentSubType, found.componentSubType) &&
           same(search.componentManufacturer, found.componentManufacturer) &&
           (found.componentFlags & search.componentFlagsMask) == (search.componentFlags & search.componentFlagsMask);
}

class AvComponentRegistry final : public ComponentRegistry
{
public:
    AvComponentRegistry() : encoders_(installedEncoders()) {}

    ComponentHandle findNextComponent(ComponentHandle after, const ComponentDescription& search) override
    {
        bool reached = after == nullptr;
        for (const Encoder& encoder : encoders_) {
            if (reached && matches(encoder.description, search)) {
                return &encoder;
            }
            reached = reached || &encoder == after;
        }
        return nullptr;
    }

    int countComponents(const ComponentDescription& search) override
    {
        int count = 0;
        for (const Encoder& encoder : encoders_) {
            count += matches(encoder.description, search) ? 1 : 0;
        }
        return count;
    }

    int componentInfo(ComponentHandle component, ComponentDescription& description, QByteArray& name) override
    {
        for (const Encoder& encoder : encoders_) {
            if (&encoder == component) {
                description = encoder.description;
                name = encoder.name;
                return 0;
            }
        }
        constexpr int invalidComponentID = -3000;
        return invalidComponentID;
    }

private:
    std::vector<Encoder> encoders_;
};

Replaceable<ComponentRegistry>& registry()
{
    static Replaceable<ComponentRegistry> instance(
        [] { return std::unique_ptr<ComponentRegistry>(std::make_unique<AvComponentRegistry>()); });
    return instance;
}

} // namespace

void setComponentRegistry(ComponentRegistry* other)
{
    registry().replace(other);
}

ComponentRegistry& componentRegistry()
{
    return registry().inUse();
}

} // namespace tavrix
