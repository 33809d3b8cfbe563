// The objects of kit_bench on the kit.

#include "KitBench.h"

#include <lyr/kit.h>

LYR_COMPONENT(KitItself, IWork) {
    int Work() override {
        return 1;
    }
};

LYR_COMPONENT(KitTied, lyr::TiesOnly) {
};
LYR_TIE(KitTie, KitTied, IWork) {
    int Work() override {
        return 1;
    }
};

LYR_COMPONENT(KitKeeper, lyr::TiesOnly) {
};
LYR_KEPT_EXTENSION(KitKept, (KitKeeper), IWork) {
    int Work() override {
        return 1;
    }
};

LYR_COMPONENT(KitRequester, lyr::TiesOnly) {
};
LYR_TRANSIENT_EXTENSION(KitTransient, (KitRequester), IWork) {
    int Work() override {
        return 1;
    }
};
