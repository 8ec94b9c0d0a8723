// Volumes that are declared, that are mounted under the system's usual places, and the boot volume. The usual
// places are looked for under a temporary folder here.

#include <filesystem>
#include <gtest/gtest.h>
#include <string>

#include "platform/carbon/FileManager.h"
#include "tests/support/TemporaryFolder.h"

namespace {

namespace fs = std::filesystem;
using carbon::Failure;
using carbon::FileManager;

class VolumeLookUp : public testing::Test {
 protected:
  // The POSIX path that a colon-separated path of an existing file leads to; the code of what failed in its
  // place.
  std::string posixPath(const std::string &macPath) {
    try {
      FSSpec spec;
      manager_.makeSpec(0, 0, macPath, spec);
      return manager_.posixPath(manager_.makeRef(spec));
    } catch (const Failure &failure) {
      return std::to_string(failure.code);
    }
  }

  std::string macPathOf(const fs::path &posixPath) {
    try {
      FSSpec spec;
      manager_.specFromPath(posixPath, spec);
      return manager_.macPath(spec);
    } catch (const Failure &failure) {
      return std::to_string(failure.code);
    }
  }

  OSErr mount(const std::string &name, const std::string &root) {
    try {
      manager_.mount(name, root);
      return noErr;
    } catch (const Failure &failure) {
      return failure.code;
    }
  }

  std::string at(const fs::path &name) const { return machine_.path() / name; }

  support::TemporaryFolder machine_;
  FileManager manager_{machine_.path()};
};

TEST_F(VolumeLookUp, FindsDirectoriesUnderTheUsualPlaces) {
  for (const char *root :
       {"Volumes/MacPod", "media/ann/AnnsPod", "media/joe/JoesPod", "run/media/ann/RunPod", "mnt/MntPod"}) {
    const std::string file = machine_.write(fs::path(root) / "file");
    const std::string mac = fs::path(root).filename().string() + ":file";
    EXPECT_EQ(posixPath(mac), file);
    EXPECT_EQ(macPathOf(file), mac);
  }
}

TEST_F(VolumeLookUp, TakesOnlyDirectoriesThatAreExactlyThere) {
  machine_.write("media/ann/Pod/inner/file");
  machine_.write("mnt/plain");
  EXPECT_EQ(posixPath("ann:"), std::to_string(nsvErr)) << "one level too high";
  EXPECT_EQ(posixPath("inner:"), std::to_string(nsvErr)) << "one level too low";
  EXPECT_EQ(posixPath("plain:"), std::to_string(nsvErr)) << "not a directory";
  EXPECT_EQ(posixPath("Pod:inner:file"), at("media/ann/Pod/inner/file"));
}

TEST_F(VolumeLookUp, FileWithAVolumesNameDoesNotHideTheVolume) {
  machine_.write("media/ann/Pod");
  machine_.write("mnt/Pod/file");
  machine_.write("mnt/POD");
  EXPECT_EQ(posixPath("Pod:file"), at("mnt/Pod/file"));
  EXPECT_EQ(posixPath("POD:file"), at("mnt/Pod/file"));
}

TEST_F(VolumeLookUp, SeesVolumesComeAndGo) {
  EXPECT_EQ(posixPath("Pod:"), std::to_string(nsvErr));
  machine_.write("mnt/Pod/file");
  FSSpec spec;
  EXPECT_EQ(manager_.makeSpec(0, 0, "Pod:file", spec), noErr);
  EXPECT_EQ(posixPath("Pod:file"), at("mnt/Pod/file"));
  fs::remove_all(at("mnt/Pod"));
  EXPECT_EQ(posixPath("Pod:file"), std::to_string(nsvErr));
  try {
    manager_.macPath(spec);
    FAIL() << "the volume has gone";
  } catch (const Failure &failure) {
    EXPECT_EQ(failure.code, nsvErr);
  }
}

TEST_F(VolumeLookUp, FollowsAVolumesLink) {
  machine_.write("disk/file");
  machine_.makeDirectory("Volumes");
  fs::create_directory_symlink(at("disk"), at("Volumes/Linked"));
  EXPECT_TRUE(fs::equivalent(posixPath("Linked:file"), at("disk/file")));
}

TEST_F(VolumeLookUp, SlashAndColonChangePlacesInVolumeNames) {
  machine_.write("mnt/AC:DC/file");
  EXPECT_EQ(posixPath("AC/DC:file"), at("mnt/AC:DC/file"));
  EXPECT_EQ(macPathOf(at("mnt/AC:DC/file")), "AC/DC:file");
}

TEST_F(VolumeLookUp, DisregardsCaseWhenNoNameMatchesExactly) {
  machine_.write("mnt/Pod/file");
  machine_.write("mnt/pod/file");
  EXPECT_EQ(posixPath("Pod:file"), at("mnt/Pod/file"));
  EXPECT_EQ(posixPath("pod:file"), at("mnt/pod/file"));
  EXPECT_EQ(posixPath("POD:file"), at("mnt/Pod/file")) << "the first in byte order";
  EXPECT_EQ(posixPath("sYSTEM:"), "/");
}

TEST_F(VolumeLookUp, ExactNameAnywhereGoesBeforeDeclaredNameInOtherCase) {
  machine_.write("mnt/pod/file");
  machine_.write("declared/file");
  ASSERT_EQ(mount("POD", at("declared")), noErr);
  EXPECT_EQ(posixPath("pod:file"), at("mnt/pod/file"));
  EXPECT_EQ(posixPath("Pod:file"), at("declared/file"));
}

TEST_F(VolumeLookUp, DeclaredVolumeGoesBeforeMountedAndBootOnes) {
  machine_.write("mnt/Pod/file");
  machine_.write("mnt/System/file");
  EXPECT_EQ(posixPath("System:file"), at("mnt/System/file"));
  ASSERT_EQ(mount("Pod", machine_.makeDirectory("one")), noErr);
  ASSERT_EQ(mount("System", machine_.makeDirectory("two")), noErr);
  EXPECT_EQ(posixPath("Pod:"), at("one"));
  EXPECT_EQ(posixPath("System:"), at("two"));
}

TEST_F(VolumeLookUp, DeclarationNeedsAGoodName) {
  for (const std::string name : {"", ".", "..", "a:b"}) EXPECT_EQ(mount(name, at("")), bdNamErr) << name;
  EXPECT_EQ(mount(std::string(64, 'v'), at("")), bdNamErr);
  EXPECT_EQ(mount(std::string(63, 'v'), at("")), noErr);
}

TEST_F(VolumeLookUp, DeclarationNeedsADirectory) {
  EXPECT_EQ(mount("Pod", at("absent")), fnfErr);
  EXPECT_EQ(mount("Pod", machine_.write("plain")), fnfErr);
  EXPECT_EQ(mount("Pod", ""), fnfErr);
  EXPECT_EQ(posixPath("Pod:"), std::to_string(nsvErr));
}

TEST_F(VolumeLookUp, DeclarationFollowsLinksAndRelativeSteps) {
  machine_.write("disk/file");
  fs::create_directory_symlink("disk", at("link"));
  ASSERT_EQ(mount("Pod", at("link/../link/.")), noErr);
  EXPECT_EQ(posixPath("Pod:file"), at("disk/file"));
}

TEST_F(VolumeLookUp, SecondDeclarationReplacesTheFirst) {
  machine_.write("one/file");
  machine_.write("two/file");
  ASSERT_EQ(mount("Pod", at("one")), noErr);
  FSSpec first;
  ASSERT_EQ(manager_.makeSpec(0, 0, "Pod:file", first), noErr);
  ASSERT_EQ(mount("Pod", at("two")), noErr);
  EXPECT_EQ(posixPath("Pod:file"), at("two/file"));
  EXPECT_THROW(manager_.makeRef(first), Failure) << "names nothing rather than the other volume's file";

  ASSERT_EQ(mount("Pod", at("one")), noErr);
  EXPECT_EQ(manager_.posixPath(manager_.makeRef(first)), at("one/file"));
}

TEST_F(VolumeLookUp, SameDeclarationAgainChangesNothing) {
  machine_.write("one/file");
  ASSERT_EQ(mount("Pod", at("one")), noErr);
  FSSpec before;
  FSSpec after;
  manager_.makeSpec(0, 0, "Pod:file", before);
  for (int i = 0; i < 40000; ++i) ASSERT_EQ(mount("Pod", at("one")), noErr);
  manager_.makeSpec(0, 0, "Pod:file", after);
  EXPECT_EQ(before.vRefNum, after.vRefNum);
}

TEST_F(VolumeLookUp, ReplacingADeclaredSystemKeepsTheBootVolume) {
  ASSERT_EQ(mount("System", "/"), noErr);
  ASSERT_EQ(mount("System", machine_.makeDirectory("other")), noErr);
  FSSpec spec;
  EXPECT_EQ(manager_.makeSpec(0, 2, "etc", spec), noErr);
  EXPECT_EQ(manager_.posixPath(manager_.makeRef(spec)), "/etc");
}

TEST_F(VolumeLookUp, PathBelongsToTheLongestMatchingRoot) {
  machine_.write("outer/inner/file");
  machine_.write("outer/inner2/file");
  ASSERT_EQ(mount("Inner", at("outer/inner")), noErr);
  ASSERT_EQ(mount("Outer", at("outer")), noErr);
  EXPECT_EQ(macPathOf(at("outer/inner/file")), "Inner:file");
  EXPECT_EQ(macPathOf(at("outer/inner")), "Inner:");
  EXPECT_EQ(macPathOf(at("outer/inner2/file")), "Outer:inner2:file") << "a longer name is not inside";
  EXPECT_EQ(macPathOf(at("outer/")), "Outer:");
  machine_.write("wide/deep/file");
  ASSERT_EQ(mount("Wide", at("wide")), noErr);
  ASSERT_EQ(mount("Deep", at("wide/deep")), noErr);
  EXPECT_EQ(macPathOf(at("wide/deep/file")), "Deep:file") << "though the other was declared first";
  EXPECT_EQ(macPathOf("/etc"), "System:etc");
  EXPECT_EQ(macPathOf("/"), "System:");
}

TEST_F(VolumeLookUp, FirstDeclaredVolumeOfARootIsTheOneForItsPaths) {
  machine_.write("disk/file");
  ASSERT_EQ(mount("First", at("disk")), noErr);
  ASSERT_EQ(mount("Second", at("disk")), noErr);
  ASSERT_EQ(mount("Whole", "/"), noErr);
  EXPECT_EQ(macPathOf(at("disk/file")), "First:file");
  EXPECT_EQ(macPathOf("/etc"), "Whole:etc") << "declared volumes go before the boot volume";
}

TEST_F(VolumeLookUp, IdentifiersBelongToOneVolume) {
  machine_.write("disk/folder/file");
  ASSERT_EQ(mount("First", at("disk")), noErr);
  ASSERT_EQ(mount("Second", at("disk")), noErr);
  FSSpec first;
  FSSpec second;
  ASSERT_EQ(manager_.makeSpec(0, 0, "First:folder:file", first), noErr);
  ASSERT_EQ(manager_.makeSpec(0, 0, "Second:folder:file", second), noErr);
  EXPECT_NE(first.vRefNum, second.vRefNum);
  std::swap(first.vRefNum, second.vRefNum);
  EXPECT_THROW(manager_.macPath(first), Failure);
  EXPECT_THROW(manager_.macPath(second), Failure);
}

TEST_F(VolumeLookUp, EndsWhenReferenceNumbersRunOut) {
  std::string last;
  OSErr result = noErr;
  int declared = 0;
  for (; result == noErr && declared < 40000; ++declared) {
    last = std::to_string(declared);
    result = mount(last, machine_.path());
  }
  EXPECT_EQ(result, memFullErr);
  EXPECT_EQ(declared, 4096) << "the boot volume has the first of 4096 numbers";
  EXPECT_EQ(posixPath("0:"), machine_.path());
  EXPECT_EQ(posixPath(last + ":"), std::to_string(nsvErr));
}

}  // namespace
