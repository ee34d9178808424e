// The independent side of the Fast Infoset interoperability tests: Debian's Java Fast Infoset
// implementation encodes XML text and decodes Fast Infoset, and prints the infoset of either
// form the same way, so that two documents can be compared as text.
//
//   java FiInterop encode <in.xml> <out.fi> <options>   options: default | utf16 | index | lexical
//   java FiInterop infoset <file>                       XML text or Fast Infoset (by content)

import com.sun.xml.fastinfoset.sax.SAXDocumentParser;
import com.sun.xml.fastinfoset.sax.SAXDocumentSerializer;
import java.io.BufferedInputStream;
import java.io.FileInputStream;
import java.io.FileOutputStream;
import java.io.InputStream;
import java.io.OutputStream;
import java.nio.charset.StandardCharsets;
import java.util.ArrayList;
import java.util.List;
import javax.xml.parsers.SAXParser;
import javax.xml.parsers.SAXParserFactory;
import org.xml.sax.Attributes;
import org.xml.sax.InputSource;
import org.xml.sax.XMLReader;
import org.xml.sax.helpers.DefaultHandler;

public final class FiInterop {
    public static void main(String[] args) throws Exception {
        if (args.length == 4 && args[0].equals("encode")) {
            encode(args[1], args[2], args[3]);
        } else if (args.length == 2 && args[0].equals("infoset")) {
            System.out.print(infoset(args[1]));
        } else {
            System.err.println("usage: FiInterop encode IN.xml OUT.fi OPTIONS | infoset FILE");
            System.exit(2);
        }
    }

    private static XMLReader xmlReader() throws Exception {
        SAXParserFactory factory = SAXParserFactory.newInstance();
        factory.setNamespaceAware(true);
        SAXParser parser = factory.newSAXParser();
        return parser.getXMLReader();
    }

    // XML text to Fast Infoset with the serializer's options of one variant: "utf16" writes every
    // string as UTF-16, "index" enters attribute values and character chunks of any length in
    // the tables, "lexical" keeps comments and processing instructions as well.
    private static void encode(String in, String out, String options) throws Exception {
        try (OutputStream output = new FileOutputStream(out)) {
            SAXDocumentSerializer serializer = new SAXDocumentSerializer();
            serializer.setOutputStream(output);
            if (options.equals("utf16")) serializer.setCharacterEncodingScheme("UTF-16BE");
            if (options.equals("index")) {
                serializer.setMinAttributeValueSize(0);
                serializer.setMaxAttributeValueSize(1000);
                serializer.setMinCharacterContentChunkSize(0);
                serializer.setMaxCharacterContentChunkSize(1000);
            }
            XMLReader reader = xmlReader();
            reader.setFeature("http://xml.org/sax/features/namespace-prefixes", false);
            reader.setContentHandler(serializer);
            if (options.equals("lexical")) {
                reader.setProperty("http://xml.org/sax/properties/lexical-handler", serializer);
            }
            reader.parse(new InputSource(in));
        }
    }

    private static String infoset(String path) throws Exception {
        Printer printer = new Printer();
        try (InputStream input = new BufferedInputStream(new FileInputStream(path))) {
            input.mark(4);
            byte[] head = input.readNBytes(4);
            input.reset();
            boolean fastInfoset = head.length == 4 && (head[0] & 0xFF) == 0xE0 && head[1] == 0
                    && head[2] == 0 && head[3] == 1;
            if (fastInfoset) {
                SAXDocumentParser parser = new SAXDocumentParser();
                parser.setFeature("http://xml.org/sax/features/namespaces", true);
                parser.setContentHandler(printer);
                parser.parse(input);
            } else {
                XMLReader reader = xmlReader();
                reader.setContentHandler(printer);
                reader.parse(new InputSource(input));
            }
        }
        return printer.text.toString();
    }

    // Prints elements, their in-scope declarations, attributes sorted by namespace and local
    // name, and character content with adjacent chunks merged, one item per line.
    private static final class Printer extends DefaultHandler {
        final StringBuilder text = new StringBuilder();
        private final StringBuilder characters = new StringBuilder();
        private final List<String> declarations = new ArrayList<>();
        private int depth;

        @Override
        public void startPrefixMapping(String prefix, String uri) {
            declarations.add("xmlns " + prefix + "=" + uri);
        }

        @Override
        public void startElement(String uri, String local, String qName, Attributes atts) {
            flush();
            line("element {" + uri + "}" + local);
            declarations.sort(null);
            for (String declaration : declarations) line("  " + declaration);
            declarations.clear();
            List<String> attributes = new ArrayList<>();
            for (int i = 0; i < atts.getLength(); i++) {
                if (atts.getQName(i).startsWith("xmlns")) continue;
                attributes.add("  @{" + atts.getURI(i) + "}" + atts.getLocalName(i) + "="
                        + escape(atts.getValue(i)));
            }
            attributes.sort(null);
            for (String attribute : attributes) line(attribute);
            depth++;
        }

        @Override
        public void endElement(String uri, String local, String qName) {
            flush();
            depth--;
            line("end");
        }

        @Override
        public void characters(char[] ch, int start, int length) {
            characters.append(ch, start, length);
        }

        private void flush() {
            if (characters.length() > 0) line("text " + escape(characters.toString()));
            characters.setLength(0);
        }

        private void line(String item) {
            for (int i = 0; i < depth; i++) text.append(' ');
            text.append(item).append('\n');
        }

        private static String escape(String value) {
            StringBuilder out = new StringBuilder();
            for (byte b : value.getBytes(StandardCharsets.UTF_8)) {
                int c = b & 0xFF;
                if (c < 0x20 || c == '\\' || c >= 0x7F) {
                    out.append(String.format("\\x%02X", c));
                } else {
                    out.append((char) c);
                }
            }
            return out.toString();
        }
    }
}
