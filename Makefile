# Thin wrapper over the CMake presets: every target first makes sure the Debian
# packages are installed, then hands over to CMake and CTest.
.PHONY: all deps build run desktop-entry test test-sanitize format format-check bench fuzz package package-check clean

all: build

deps:
	@scripts/install-deps

build: deps
	cmake --preset default
	cmake --build --preset default

run: build
	./build/bin/lumenote

# The desktop menu starts the application of this build tree: its desktop
# entry (written by the build, naming this tree's executable and icon) is
# copied into the user's applications folder.
DESKTOP_ENTRY = com.tallywise.Lumenote.desktop
desktop-entry: build
	install -D -m 0644 build/share/applications/$(DESKTOP_ENTRY) \
		"$${XDG_DATA_HOME:-$$HOME/.local/share}/applications/$(DESKTOP_ENTRY)"

test: build
	ctest --preset default

test-sanitize: deps
	cmake --preset sanitize
	cmake --build --preset sanitize
	ctest --preset sanitize

format: build
	cmake --build --preset default --target format

format-check: build
	cmake --build --preset default --target format-check

bench: build
	cmake --build --preset default --target bench

# Each fuzz target runs FUZZ_SECONDS seconds from a scratch copy of its corpus.
FUZZ_SECONDS ?= 60
fuzz: deps
	cmake --preset fuzz
	cmake --build --preset fuzz
	fuzz/run-fuzzers --seconds $(FUZZ_SECONDS) build-fuzz

# The Debian package, in build-package/ (cmake/LumenotePackage.cmake).
package: deps
	cmake --preset package
	cmake --build --preset package
	cd build-package && cpack

# Builds the package, then checks it: its contents and control fields,
# lintian, and the installed programs run from an unpacked root.
package-check: package
	tests/package/check_package.sh build-package

clean:
	rm -rf build build-sanitize build-fuzz build-package
