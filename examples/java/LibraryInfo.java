// SPDX-License-Identifier: Apache-2.0

import com.norvane.quarlin.Library;

/** Says which native library was loaded, and on which machine it is. */
public final class LibraryInfo {
    private LibraryInfo() {
    }

    /**
     * Prints version and model. Exit status: 0, or 1 when there is no library that goes with the jar.
     *
     * @param arguments none
     */
    public static void main(String[] arguments) {
        try {
            System.out.println("Library: " + Library.version());
            String model = Library.modelNumber();
            System.out.println("Model:   " + (model.isEmpty() ? "(the firmware names none)" : model));
        } catch (UnsatisfiedLinkError nothing) {
            // Each path that was tried, and what was wrong with it.
            System.err.println(nothing.getMessage());
            System.exit(1);
        }
    }
}
