"""Conan 2 recipe. In the repository: conan create packaging/conan --build=missing"""

import os
import re

from conan import ConanFile
from conan.errors import ConanInvalidConfiguration
from conan.tools.build import check_min_cppstd
from conan.tools.cmake import CMake, CMakeDeps, CMakeToolchain, cmake_layout
from conan.tools.files import copy, load, rmdir

required_conan_version = ">=2.0.9"


class Quillon9Conan(ConanFile):
    name = "quillon9"
    description = "Run-time library of an XML data binder"
    license = "MIT"
    topics = ("xml", "data-binding", "xml-schema", "fast-infoset")
    package_type = "library"
    settings = "os", "arch", "compiler", "build_type"
    options = {"shared": [True, False], "fPIC": [True, False], "with_tools": [True, False]}
    default_options = {"shared": True, "fPIC": True, "with_tools": True}
    implements = ["auto_shared_fpic"]

    @property
    def _repository(self):
        return os.path.join(self.recipe_folder, os.pardir, os.pardir)

    def set_version(self):
        text = load(self, os.path.join(self._repository, "include", "quillon9", "version.h"))
        numbers = dict(re.findall(r"^#define QUILLON9_VERSION_(MAJOR|MINOR|PATCH) (\d+)$", text, re.MULTILINE))
        self.version = ".".join(numbers[part] for part in ("MAJOR", "MINOR", "PATCH"))

    def export_sources(self):
        for pattern in ("CMakeLists.txt", "LICENSE", "README.md", "CHANGELOG.md", "cmake/*", "include/*", "src/*",
                        "tools/*"):
            copy(self, pattern, src=self._repository, dst=self.export_sources_folder)

    def layout(self):
        cmake_layout(self)

    # No public header of ours includes one of these.
    def requirements(self):
        self.requires("expat/[>=2.5 <3]")
        self.requires("pcre2/[>=10.42 <11]")
        self.requires("zlib/[>=1.2.11 <2]")

    def build_requirements(self):
        self.tool_requires("cmake/[>=3.25]")

    def validate(self):
        check_min_cppstd(self, 17)
        if self.settings.os != "Linux":
            raise ConanInvalidConfiguration(f"{self.ref} runs on Linux only")

    def generate(self):
        toolchain = CMakeToolchain(self)
        toolchain.cache_variables["QUILLON9_PCRE"] = "2"
        toolchain.cache_variables["QUILLON9_BUILD_TOOLS"] = bool(self.options.with_tools)
        toolchain.cache_variables["QUILLON9_BUILD_TESTS"] = False
        toolchain.cache_variables["QUILLON9_BUILD_EXAMPLES"] = False
        toolchain.generate()
        CMakeDeps(self).generate()

    def build(self):
        cmake = CMake(self)
        cmake.configure()
        cmake.build()

    def package(self):
        copy(self, "LICENSE", src=self.source_folder, dst=os.path.join(self.package_folder, "licenses"))
        CMake(self).install()
        # Conan writes these itself, with the places of what the library needs.
        for folder in ("cmake", "pkgconfig"):
            rmdir(self, os.path.join(self.package_folder, "lib", folder))
        rmdir(self, os.path.join(self.package_folder, "share"))

    def package_info(self):
        self.cpp_info.libs = ["quillon9"]
        self.cpp_info.set_property("cmake_file_name", "Quillon9")
        self.cpp_info.set_property("cmake_target_name", "Quillon9::quillon9")
        self.cpp_info.set_property("pkg_config_name", "quillon9")
        self.cpp_info.requires = ["expat::expat", "pcre2::pcre2-8", "zlib::zlib"]
