// placeholder: written with its class
