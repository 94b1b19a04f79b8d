// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.msr;

import java.io.IOException;

/** The native calls that {@link CardReader} makes; tests put others in their place. */
interface CardNatives {
    /** The native library's own. */
    CardNatives LIBRARY = new CardNatives() {
        @Override
        public int initialize() throws IOException {
            return MagStripeReader.QLMSR_Initialize(MagStripeReader.class, SwipeDispatcher.class);
        }

        @Override
        public int uninitialize() throws IOException {
            return MagStripeReader.QLMSR_Uninitialize();
        }

        @Override
        public int enable() throws IOException {
            return MagStripeReader.QLMSR_Enable();
        }

        @Override
        public int disable() throws IOException {
            return MagStripeReader.QLMSR_Disable();
        }

        @Override
        public boolean isEnabled() throws IOException {
            return MagStripeReader.QLMSR_IsEnabled();
        }

        @Override
        public int select(int index) throws IOException {
            return MagStripeReader.QLMSR_SelectDevice(index);
        }

        @Override
        public MagStripeReader[] readers() throws IOException {
            return MagStripeReader.QLMSR_GetMagStripeReaders();
        }
    };

    int initialize() throws IOException;

    int uninitialize() throws IOException;

    int enable() throws IOException;

    int disable() throws IOException;

    boolean isEnabled() throws IOException;

    int select(int index) throws IOException;

    MagStripeReader[] readers() throws IOException;
}
