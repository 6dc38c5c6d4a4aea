package com.orlu.fuzz;

import java.lang.management.ManagementFactory;
import java.util.regex.Matcher;
import java.util.regex.Pattern;
import javax.management.JMException;
import javax.management.ObjectName;

/** Figures that the VM reports about itself. */
public final class Figures {
    private static final Pattern GLOBAL_REFERENCES = Pattern.compile("JNI global refs?: (\\d+)");

    private Figures() {
    }

    /**
     * Returns the number of live JNI global references after a garbage collection; -1 if the VM does not
     * report it.
     */
    public static int globalReferences() throws JMException {
        System.gc();
        String text = (String) ManagementFactory.getPlatformMBeanServer().invoke(
                new ObjectName("com.sun.management:type=DiagnosticCommand"), "threadPrint",
                new Object[] {new String[0]}, new String[] {String[].class.getName()});
        Matcher matcher = GLOBAL_REFERENCES.matcher(text);
        return matcher.find() ? Integer.parseInt(matcher.group(1)) : -1;
    }
}
