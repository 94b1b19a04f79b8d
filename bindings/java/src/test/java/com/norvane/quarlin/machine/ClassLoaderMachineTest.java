// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.machine;

import static org.junit.jupiter.api.Assertions.assertEquals;

import com.norvane.quarlin.msr.CardReader;
import com.norvane.quarlin.msr.MagStripeData;
import java.io.File;
import java.net.URL;
import java.net.URLClassLoader;
import java.util.Arrays;
import java.util.concurrent.BlockingQueue;
import java.util.concurrent.LinkedBlockingQueue;
import java.util.concurrent.TimeUnit;
import org.junit.jupiter.api.Tag;
import org.junit.jupiter.api.Test;

/** An application whose classes, the library among them, come from a class loader of their own, as on a server. */
@Tag("machine")
class ClassLoaderMachineTest {
    /** Run in a JVM of its own, which does not know the library: the arguments say where the application's classes are. */
    public static final class Host {
        private Host() {
        }

        public static void main(String[] arguments) throws Exception {
            URL[] places = new URL[arguments.length];
            for (int i = 0; i < places.length; ++i) {
                places[i] = new URL(arguments[i]);
            }
            ClassLoader withoutClassPath = ClassLoader.getSystemClassLoader().getParent();
            try (URLClassLoader loader = new URLClassLoader(places, withoutClassPath)) {
                Class<?> application = loader.loadClass(Application.class.getName());
                application.getMethod("main", String[].class).invoke(null, (Object) new String[0]);
            }
        }
    }

    /** Prints the second track of the next card. */
    public static final class Application {
        private Application() {
        }

        public static void main(String[] arguments) throws InterruptedException {
            BlockingQueue<MagStripeData> swipes = new LinkedBlockingQueue<>();
            try (CardReader reader = CardReader.open()) {
                reader.select(reader.readers().get(0));
                reader.addSwipeListener(swipes::add);
                reader.enable();
                System.out.println("ready");
                MagStripeData swipe = swipes.poll(Wait.PATIENCE.getSeconds(), TimeUnit.SECONDS);
                System.out.println(swipe == null ? "no swipe" : "swipe " + swipe.getTracks()[1].getText());
            }
        }
    }

    private static String placeOf(Class<?> type) {
        return type.getProtectionDomain().getCodeSource().getLocation().toString();
    }

    @Test
    void aSwipeReachesAnApplicationThatHasALoaderOfItsOwn() throws Exception {
        try (Machine machine = new Machine()) {
            machine.turns().cardReaders();
            machine.play(
                    "[[device]]",
                    "kind = \"card-reader\"",
                    "name = \"reader\"",
                    "security_level = 2",
                    "[[device.card]]",
                    "id = \"staff\"",
                    "track2 = \";9000012345=000042?\"");
            File classesOfTests = new File(Host.class.getProtectionDomain().getCodeSource().getLocation().toURI());
            try (Program application = new Program(Arrays.asList(
                    new File(System.getProperty("java.home"), "bin/java.exe").getPath(),
                    "-XX:ActiveProcessorCount=2",
                    "-Dcom.norvane.quarlin.library=" + Simulator.property("com.norvane.quarlin.library"),
                    "-cp", classesOfTests.getPath(), Host.class.getName(),
                    placeOf(CardReader.class), placeOf(Host.class)))) {
                application.awaitLine("ready");
                machine.command("reader swipe staff");
                assertEquals("swipe ;9000012345=000042?", application.awaitLine("swipe"));
                assertEquals(0, application.awaitEnd());
            }
        }
    }
}
