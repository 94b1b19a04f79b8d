// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.machine;

import com.norvane.quarlin.bcr.BarcodeException;
import com.norvane.quarlin.bcr.QlBarcode;
import com.norvane.quarlin.uhfrfid.RfidException;
import com.norvane.quarlin.uhfrfid.UhfRfidNativeBase;
import java.lang.reflect.Method;

/** Which classes the native library throws and calls for a group of families, for as long as a test wants others. */
final class NativeGroups {
    private NativeGroups() {
    }

    /** Takes what the native library hands an exception as it is. */
    public static final class RawException extends RuntimeException {
        private static final long serialVersionUID = 1L;

        public RawException(String message) {
            super(message);
        }
    }

    /** The Java library's own classes are back when it is closed. */
    interface Raw extends AutoCloseable {
        @Override
        void close() throws ReflectiveOperationException;
    }

    static Raw rawRfid() throws ReflectiveOperationException {
        Class.forName(UhfRfidNativeBase.class.getName());
        Method register = Class.forName("com.norvane.quarlin.uhfrfid.CoreNatives")
                .getDeclaredMethod("nInit", Class.class);
        register.setAccessible(true);
        register.invoke(null, RawException.class);
        return () -> register.invoke(null, RfidException.class);
    }

    /** Scans go where they always go. */
    static Raw rawBarcode() throws ReflectiveOperationException {
        Class.forName(QlBarcode.class.getName());
        Class<?> receiver = Class.forName("com.norvane.quarlin.bcr.ScanDispatcher");
        Method register = Class.forName("com.norvane.quarlin.bcr.CoreNatives")
                .getDeclaredMethod("nInit", Class.class, Class.class);
        register.setAccessible(true);
        register.invoke(null, RawException.class, receiver);
        return () -> register.invoke(null, BarcodeException.class, receiver);
    }
}
