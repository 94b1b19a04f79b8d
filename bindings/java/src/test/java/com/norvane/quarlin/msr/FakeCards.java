// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.msr;

import java.util.ArrayList;
import java.util.List;

/** Behaves as the native library does with its deliveries and failures, and writes down what it was asked. */
final class FakeCards implements CardNatives {
    final List<String> calls = new ArrayList<>();
    String enableFailure;
    String disableFailure;
    String isEnabledFailure;
    String uninitializeFailure;
    boolean enabled;

    /** How often a swipe would come. */
    int deliveries;

    private static void failWith(String message) {
        if (message != null) {
            throw new RuntimeException(message);
        }
    }

    @Override
    public int initialize() {
        calls.add("initialize");
        return 0;
    }

    @Override
    public int uninitialize() {
        calls.add("uninitialize");
        deliveries = 0;
        enabled = false;
        failWith(uninitializeFailure);
        return 0;
    }

    @Override
    public int enable() {
        calls.add("enable");
        ++deliveries;
        failWith(enableFailure);
        enabled = true;
        return 0;
    }

    @Override
    public int disable() {
        calls.add("disable");
        enabled = false;
        String failure = disableFailure;
        if (deliveries == 0) {
            failure = "Fail remove callback.Check parameter and usage.";
        } else {
            --deliveries;
        }
        failWith(failure);
        return 0;
    }

    @Override
    public boolean isEnabled() {
        calls.add("isEnabled");
        failWith(isEnabledFailure);
        return enabled;
    }

    @Override
    public int select(int index) {
        calls.add("select " + index);
        if (index > 1) {
            throw new IllegalArgumentException("Not valid device index.");
        }
        return 0;
    }

    @Override
    public MagStripeReader[] readers() {
        calls.add("readers");
        return new MagStripeReader[0];
    }
}
