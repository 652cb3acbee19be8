// Every loader without memory: each call of `new` fails once. It must end with an exception or with less
// loaded, and leave nothing behind.

#include "allocations.h"
#include "am_archivemanager.h"
#include "audiere.h"
#include "kin_main.h"
#include "o3d_manager.h"
#include "pan_button.h"
#include "pan_checkbox.h"
#include "pan_controlfactory.h"
#include "pan_dropdown.h"
#include "pan_flow.h"
#include "pan_label.h"
#include "pan_slider.h"
#include "pan_textinput.h"
#include "pan_treeview.h"
#include "pan_window.h"
#include "pan_workspace.h"
#include "script_loadxml.h"
#include "sparks_emitterinstance.h"
#include "studio_document.h"
#include "support.h"
#include "xml_parser.h"
#include "ztk_system.h"

#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <utility>

using namespace zentrak;
using namespace zentrak::test;

namespace {

std::string corpus(const std::string& name) {
    return readFile(sourcePath("tests/fuzz/corpus/" + name));
}

void expectACleanEnd(const std::function<void()>& load) {
    size_t number = 0, leaking = 0;
    {
        CaptureStdout quiet;
        load(); // for what is made once and kept
        load();
        const long before = allocationsInUse();
        bool refused = true;
        while (refused && !leaking && number < 100000) {
            refuseAllocation(++number);
            try {
                load();
            } catch (const std::exception&) {
            }
            refused = wasRefused();
            refuseAllocation(0);
            if (allocationsInUse() != before)
                leaking = number;
        }
    }
    EXPECT_EQ(leaking, 0u) << "something is left after this allocation was refused";
    EXPECT_GT(number, 3u);
    EXPECT_LT(number, 100000u);
}

void loadImage(const std::string& name) {
    am::ArchiveManager archives;
    archives.addArchive("./");
    archives.loadImage(name, -1, false);
}

template <class... Types>
void addTypes() {
    (panorama::controlFactory.addControlType(new Types), ...);
}

} // namespace

class MemoryRefused : public testing::Test {
protected:
    TempDir mDir;
    WorkingDir mInside{mDir.path()};
};

TEST_F(MemoryRefused, Setup) {
    const std::string setup = corpus("setup/all.xml");
    writeFile("script.xml", corpus("script/small.xml"));
    expectACleanEnd([&] {
        writeFile("setup.local.xml", setup);
        kindler::Kindler kindler;
        kindler.setup();
    });
}

// Saving without memory leaves the settings as they were, or writes all of them.
TEST_F(MemoryRefused, SavingLosesNothing) {
    const std::string setup = "<demo><time start=\"1\"/><display title=\"mine\"/></demo>";
    writeFile("setup.local.xml", setup);
    kindler::Kindler().setup(); // saves at its end
    const std::string saved = readFile("setup.local.xml");
    ASSERT_NE(saved, setup);
    for (size_t number = 1; number < 1000; ++number) {
        writeFile("setup.local.xml", setup);
        kindler::Kindler kindler;
        kindler.setup();
        refuseAllocation(number);
        try {
            kindler.saveXml();
        } catch (const std::exception&) {
        }
        const bool refused = wasRefused();
        refuseAllocation(0);
        const std::string now = readFile("setup.local.xml");
        EXPECT_TRUE(now == setup || now == saved) << number << now;
        kindler.mSetupDone = false; // so that its end doesn't save once more
        if (!refused)
            break;
    }
}

TEST_F(MemoryRefused, Script) {
    const std::string text = corpus("script/small.xml");
    expectACleanEnd([&] {
        script::ScriptEngine engine;
        script::LoadXML().loadMem(text.data(), long(text.size()), engine);
        engine.update(5);
    });
}

TEST_F(MemoryRefused, Images) {
    writeFile("a.png", corpus("png/rgba-interlaced.png"));
    writeFile("a.jpg", corpus("jpeg/baseline.jpg"));
    expectACleanEnd([] { loadImage("a.png"); });
    expectACleanEnd([] { loadImage("a.jpg"); });
}

TEST_F(MemoryRefused, PicturesThatAreWritten) {
    writeFile("a.png", corpus("png/rgb.png"));
    expectACleanEnd([] {
        am::ArchiveManager archives;
        archives.addArchive("./");
        am::Image image = archives.loadImage("a.png", -1, true);
        archives.writeImage("b.png", image);
    });
}

TEST_F(MemoryRefused, ZipFiles) {
    writeFile("a.zip", corpus("zip/deflated.zip"));
    expectACleanEnd([] {
        am::ArchiveManager archives;
        archives.addArchive("zip://a.zip");
        archives.readFile("hello.txt", -1);
    });
}

TEST_F(MemoryRefused, Scenes) {
    for (const char* name :
         {"o3d/overlapping.o3d", "o3d/names.o3d"}) { // without textures, which stay until the end
        const std::string bytes = corpus(name);
        expectACleanEnd([&] {
            o3d::Manager manager;
            manager.load(reinterpret_cast<const unsigned char*>(bytes.data()), int(bytes.size()));
        });
    }
}

TEST_F(MemoryRefused, ALayoutAndItsStyle) {
    addTypes<panorama::Button, panorama::Checkbox, panorama::Dropdown, panorama::Flow, panorama::Label,
             panorama::Slider, panorama::TextInput, panorama::TreeView, panorama::Window,
             panorama::Workspace>();
    const std::string text = corpus("layout/controls.xml");
    expectACleanEnd([&] {
        auto style = std::make_unique<xml::XmlParser>();
        style->parse(text);
        xml::XmlParser document;
        document.parse(text);
        panorama::Workspace root;
        root.loadStyle(style.release());
        xml::IteratorConst workspace = std::as_const(document).createIterator("workspace");
        while (++workspace)
            root.load(workspace);
    });
}

TEST_F(MemoryRefused, Particles) {
    const std::string text = corpus("particles/all.xml");
    expectACleanEnd([&] {
        xml::XmlParser document;
        document.parse(text);
        xml::IteratorConst it(&document, "instance");
        while (++it)
            sparks::EmitterInstance().load(it);
    });
}

TEST_F(MemoryRefused, Music) {
    for (const char* name : {"vorbis/mono.ogg", "flac/mono.flac", "wav/mono.wav", "mp3/mono.mp3"}) {
        const std::string bytes = corpus(name);
        expectACleanEnd([&] {
            const auto source = audiere::AdrOpenSampleSourceFromFile(
                audiere::AdrCreateMemoryFile(bytes.data(), int(bytes.size())), 0);
            float samples[200];
            if (source)
                source->read(100, samples);
        });
    }
}

TEST_F(MemoryRefused, TheStudiosDocument) {
    const std::string text = corpus("document/person.xml");
    expectACleanEnd([&] {
        studio::Document document;
        document.load(text);
        document.apply({document.setAttribute(1, "start", "2")});
        document.apply({document.erase(1)});
    });
}

// A change that fails leaves everything as it was.
TEST_F(MemoryRefused, AnEditIsWholeOrNotThereAtAll) {
    const std::string text = corpus("document/person.xml");
    for (size_t number = 1; number < 300; ++number) {
        studio::Document document;
        document.load(text);
        refuseAllocation(number);
        bool done = false;
        try {
            document.apply({document.erase(1)});
            done = true;
        } catch (const std::exception&) {
        }
        refuseAllocation(0);
        EXPECT_EQ(document.getText() != text, done) << number;
        studio::Document again;
        again.load(document.getText());
        EXPECT_EQ(document.getSize(), again.getSize()) << number;
    }
}
