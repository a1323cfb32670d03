#pragma once
// One valid file with a record of every class, hand-built: the reader's tests read it back field
// by field, the robustness tests cut and flip it, and the fuzzer starts from it.

#include "NqfBytes.h"

namespace nqftest {

inline void renderHead(NqfBytes& b, std::string_view cls, std::string_view name, std::uint32_t version = 0,
                       std::uint32_t material = 0) {
    head(b, cls, name, version);
    b.u32(0).u32(material);
}

inline void lightProperties(NqfBytes& b, int count) {
    b.sref("model::Property<osg::Vec3f>").sref("color").f32s({1, 0.5f, 0.25f});
    for (int i = 1; i < count; ++i) {
        b.sref("model::Property<float>").sref("p" + std::to_string(i)).f32(static_cast<float>(i));
    }
}

inline void fakeLight(NqfBytes& b, bool spot) {
    b.f64s({1, 2, 3}).f32s({0, 0}).f32s({1, 1}).f32(0.5f).u32(0);
    if (spot) {
        b.f32s({0, 0}).f32s({0.5f, 0.5f}).u8(1);
    }
}

inline NqfBytes sampleFile() {
    MaterialFields first;
    first.name = "body";
    first.textures = {{0, "diffuse.dds"}, {13, "damage.dds"}};
    first.uniforms = [](NqfBytes& b) {
        b.u32(2);
        b.sref("model::Property<float>").sref("shininess").f32(0.75f);
        b.sref("model::Property<const char*>").sref("mode").sref("glass");
    };
    first.animatedUniforms = [](NqfBytes& b) {
        b.u32(2);
        animatedFloat(b, "glow", 9, {{0.0, 0.0f}, {1.0, 1.0f}});  // materials do not count toward handles
        b.sref("model::ArgumentProperty").sref("blink").u32(4);
    };
    MaterialFields second;
    second.name = "sign";
    second.billboard = true;
    second.decal = 2;
    second.shadows = 5;
    second.depthBias = 1;

    auto pos = [](NqfBytes& b, std::uint32_t arg) { b.u32(arg).u32(1).f64(0.5).f64s({1, 2, 3}); };
    auto rot = [](NqfBytes& b, std::uint32_t arg) { b.u32(arg).u32(1).f64(0.25).f64s({0, 0, 0, 1}); };
    auto scale = [](NqfBytes& b, std::uint32_t arg) {
        b.u32(arg).u32(1).f64(0).f64s({0, 0, 0, 1}).u32(2).f64(0).f64s({1, 1, 1}).f64(1).f64s({2, 2, 2});
    };
    auto animationHead = [](NqfBytes& b, std::string_view cls, std::string_view name) {
        head(b, cls, name);
        b.identity64().f64s({0, 0, 0}).f64s({0, 0, 0, 1}).f64s({0, 0, 0, 1}).f64s({1, 1, 1});
    };

    std::vector<Writer> tree = {
        plainNode,      // 0
        transformNode,  // 1
        [](NqfBytes& b) {
            head(b, "model::Bone", "bone");
            b.identity64().identity64();
        },                 // 2
        [](NqfBytes& b) {  // 3
            head(b, "model::BillboardNode", "bb", 1);
            b.u8(2).u8(1).identity64().f64s({0, 1, 0});
        },
        [](NqfBytes& b) {
            head(b, "model::LodNode", "lod");
            b.u32(2).f64s({0, 100, 100, 1e300});
        },                 // 4
        [](NqfBytes& b) {  // 5
            head(b, "model::ArgVisibilityNode", "vis");
            b.u32(1).u32(2).u32(1).f64s({0, 0.5});
        },
        [&](NqfBytes& b) {
            animationHead(b, "model::ArgPositionNode", "pos");
            b.u32(1);
            pos(b, 3);
            b.u32(0).u32(0);
        },
        [&](NqfBytes& b) {
            animationHead(b, "model::ArgRotationNode", "rot");
            b.u32(0).u32(1);
            rot(b, 1);
            b.u32(0);
        },
        [&](NqfBytes& b) {
            animationHead(b, "model::ArgScaleNode", "still");
            b.u32(0).u32(0).u32(0);
        },                  // 8
        [&](NqfBytes& b) {  // 9
            animationHead(b, "model::ArgAnimationNode", "mixed");
            b.u32(1);
            pos(b, 3);
            b.u32(0).u32(1);
            scale(b, 5);
        },
        [&](NqfBytes& b) {  // 10
            animationHead(b, "model::ArgAnimatedBone", "abone");
            b.u32(0).u32(1);
            rot(b, 6);
            b.u32(0).identity64();
        },
        [](NqfBytes& b) {  // 11
            head(b, "model::TmpNumberRoot", "num", 0, 1, [](NqfBytes& p) {
                animatedFloat(p, "dial", 7, {{0, 1}});
            });
        },
    };
    std::vector<std::uint32_t> parents = {0xFFFFFFFF, 0, 1, 1, 0, 4, 5, 5, 0, 8, 9, 0};

    Group connectors{"CONNECTORS", {[](NqfBytes& b) {
                         head(b, "model::Connector", "hook");
                         b.u32(1).u32(0);
                     }}};
    Group shells{"SHELL_NODES",
                 {
                     [](NqfBytes& b) {
                         head(b, "model::ShellNode", "shell");
                         b.u32(2).u32(27).u8(4).u8(3);
                         for (int i = 2; i < 27; ++i) {
                             b.u8(0);
                         }
                         vertices(b, 3, 7);
                         indices(b, 0, {0, 1, 2});
                     },
                     [](NqfBytes& b) {
                         head(b, "model::ShellSkinNode", "skinshell");
                         b.u32(1).u32(2).u32(0xFFFFFFFF).u32(27);
                         for (int i = 0; i < 27; ++i) {
                             b.u8(i == 0 ? 3 : 0);
                         }
                         vertices(b, 0, 0);
                         indices(b, 0, {});
                     },
                     [](NqfBytes& b) {
                         head(b, "model::ShellSkinNode", "boxed", 1);
                         b.u32(0).u32(0).f32s({-1, -1, -1}).f32s({1, 1, 1}).u32(27);
                         for (int i = 0; i < 27; ++i) {
                             b.u8(i == 0 ? 3 : 0);
                         }
                         vertices(b, 2, 3);
                         indices(b, 0, {1, 0});
                     },
                     [](NqfBytes& b) {
                         head(b, "model::SegmentsNode", "segs");
                         b.u32(0).u32(1).f32s({0, 0, 0}).f32s({1, 1, 1});
                     },
                 }};
    Group lights{"LIGHT_NODES",
                 {
                     [](NqfBytes& b) {
                         head(b, "model::LightNode", "omni");
                         b.u32(1).u8(0).u32(7);
                         lightProperties(b, 7);
                         b.u8(0);
                     },
                     [](NqfBytes& b) {
                         head(b, "model::LightNode", "spot", 3);
                         b.u32(1).u8(1).u32(10);
                         lightProperties(b, 10);
                         b.u8(2).u8(1);
                         textureRecord(b, "projector.dds", 1);
                     },
                 }};
    Group renders{"RENDER_NODES",
                  {
                      [](NqfBytes& b) {
                          renderHead(b, "model::RenderNode", "one");
                          b.u32(1).u32(1).u32(0xFFFFFFFF);
                          vertices(b, 3, 6);
                          indices(b, 0, {0, 1, 2, 2, 1, 0});
                      },
                      [](NqfBytes& b) {
                          renderHead(b, "model::RenderNode", "two", 1, 1);
                          b.u32(2).u32(1).u32(0).u32(4).u32(2).u32(0).u32(0xFFFFFFFF);
                          vertices(b, 300, 1);
                          indices(b, 1, {0, 299, 256}, 6);
                          b.u32(7);  // render option
                      },
                      [](NqfBytes& b) {
                          renderHead(b, "model::NumberNode", "digits");
                          b.u32(1).u32(11).u32(2);
                          vertices(b, 4, 1);
                          indices(b, 0, {0, 1, 2, 3});
                          b.u32(2);
                          for (int i = 0; i < 32; ++i) {
                              b.u8(static_cast<std::uint8_t>(i));
                          }
                      },
                      [](NqfBytes& b) {
                          renderHead(b, "model::SkinNode", "skin");
                          b.u32(2).u32(2).u32(10).u32(0xFFFFFFFF);
                          vertices(b, 1, 3);
                          indices(b, 0, {0});
                      },
                      [](NqfBytes& b) {
                          renderHead(b, "model::SkinNode", "skinbox", 1);
                          b.u32(1).u32(2).u32(3).f32s({0, 0, 0}).f32s({0, 1, 2});
                          vertices(b, 3, 2);
                          indices(b, 0, {2, 0, 1});
                      },
                      [](NqfBytes& b) {
                          renderHead(b, "model::FakeOmniLightsNode", "omnis");
                          b.u32(1).u32(1).u32(0).u32(2);
                          fakeLight(b, false);
                          fakeLight(b, false);
                      },
                      [](NqfBytes& b) {
                          renderHead(b, "model::FakeSpotLightsNode", "spots", 2);
                          b.u32(1).u32(1).u32(0).f32s({0, 0, 1}).u32(1);
                          fakeLight(b, true);
                          b.f32s({0, -1, 0});
                      },
                      [](NqfBytes& b) {
                          renderHead(b, "model::FakeSpotLights3Node", "spots3");
                          b.u32(2).u32(0).u32(1);
                          vertices(b, 2, 4);
                      },
                      [](NqfBytes& b) {
                          renderHead(b, "model::AnimatedFakeOmniLightsNode", "aomni");
                          b.u32(1).u32(0).u32(0).u32(1);
                          fakeLight(b, false);
                          b.u32(6).u32(128).u32(128);
                          for (int i = 0; i < 128; ++i) {
                              b.f32(static_cast<float>(i));
                          }
                      },
                      [](NqfBytes& b) {
                          renderHead(b, "model::AnimatedFakeSpotLightsNode", "aspot");
                          b.u32(1).u32(0).u32(0).f32s({1, 0, 0}).u32(1);
                          fakeLight(b, true);
                          b.u32(2).u32(128).u32(128);
                          for (int i = 0; i < 128; ++i) {
                              b.f32(-static_cast<float>(i));
                          }
                      },
                  }};
    return treeFile(tree, parents, {connectors, shells, lights, renders}, 8, {first, second});
}

}  // namespace nqftest
