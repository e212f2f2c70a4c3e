# The two entry points of a fresh Debian machine: `make run` and `make test`.
# Each installs what is missing, configures and builds first.
PRESET ?= default
BUILD_DIR = build/$(PRESET)
OUT ?= out

.PHONY: deps build run test asan tsan bench clean windows windows-test windows-compare

deps:
	scripts/install-deps

build: deps
	cmake --preset $(PRESET)
	cmake --build --preset $(PRESET)

run: build
	$(BUILD_DIR)/src/cli/velorn export examples/studio.json -o $(OUT)/studio.vls
	$(BUILD_DIR)/renderer/velorn.exe -haltspp 4 -o $(OUT)/studio.png $(OUT)/studio.vls

test: build
	ctest --preset $(PRESET)

asan:
	$(MAKE) test PRESET=asan

# Under ThreadSanitizer: the support layer's tests (threads, tasks, the
# parallel image code) and the render layer's (the in-host render, the tone
# mapping dialog against a running render, the realtime preview).
tsan:
	$(MAKE) test PRESET=tsan

# The Windows build: cross compiled with MinGW-w64 and its tests run under
# Wine. The preset follows the word size that scripts/install-deps-windows
# could install Wine for.
WINDOWS_ARCH = $(shell cat build/windows-deps/arch 2>/dev/null)
WINDOWS_PRESET = $(if $(filter x86_64,$(WINDOWS_ARCH)),windows-x86_64,windows)
WINE = env WINEPREFIX=$(CURDIR)/build/windows/wine-prefix WINEDEBUG=-all wine

windows:
	scripts/install-deps-windows
	$(MAKE) windows-test
	$(MAKE) windows-compare

# Each test program runs once, as a whole: Wine takes a while to start, which
# ctest would pay once per test.
windows-test:
	cmake --preset $(WINDOWS_PRESET)
	cmake --build --preset $(WINDOWS_PRESET)
	cd build/windows/bin && status=0; for t in *_tests.exe; do \
	  echo "== $$t"; $(WINE) ./$$t --gtest_brief=1 || status=1; \
	done; exit $$status

# The bundled example exported by the Linux and by the Windows build of the
# command: the scenes may differ only in their date and the paths of the
# written files, the mesh files not at all.
windows-compare:
	cmake --preset $(PRESET)
	cmake --build --preset $(PRESET) --target velorn
	WINE="$(WINE)" scripts/compare-windows-export $(BUILD_DIR)/src/cli/velorn build/windows/bin/velorn.exe \
	  examples/studio.json build/windows/compare

bench: build
	$(BUILD_DIR)/bench/mesh_bench

clean:
	rm -rf build $(OUT)
