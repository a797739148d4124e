# Thin wrapper over the CMake presets: every target first makes sure the Debian
# packages are installed, then hands over to CMake and CTest.
.PHONY: all deps build run test test-sanitize format format-check bench clean

all: build

deps:
	@scripts/install-deps

build: deps
	cmake --preset default
	cmake --build --preset default

run: build
	./build/bin/lumenote-cli record

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

clean:
	rm -rf build build-sanitize
